// SPDX-License-Identifier: Apache-2.0
/* Whether a table has one address: as this program sees it, in code and in constants, as other tables refer to it, and
 * as the programs of codecs do, and as the catalogue has it. */
#include <orlenta/catalogue.h>
#include <orlenta/cn.h>
#include <orlenta/codec.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/value.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>
#if __has_include(<orlenta/us.h>)
#include <orlenta/us.h>
#include <orlenta/us_codecs.h>
#endif

extern char** environ; /* a variable of libc, which the program must be able to name as well */

static const asn1_type_desc* const in_constant = asn1_type_CN_ParticipantData;
static int (*const function_in_constant)(FILE*) = fflush;

/* The codec is that of the table itself: a copy that is none of the loader's has none. */
static int finds_codecs(void) {
    asn1_type_desc copy[17]; /* a CHOICE of five alternatives */
    memcpy(copy, asn1_type_CN_MessageFrame, sizeof copy);
    return orlenta_codec_find(asn1_type_CN_MessageFrame) != NULL && orlenta_codec_find(copy) == NULL &&
           orlenta_codec_find(asn1_type_CN_Latitude) == NULL;
}

/* A type has one entry, whether this program names its table or not. */
static int is_in_catalogue(void) {
    orlenta_type_entry entry, same;
    const orlenta_catalogue* all = orlenta_catalogue_builtin();
    for (size_t i = 0; orlenta_catalogue_get(all, i, &entry) == 0; i += 7) {
        if (orlenta_catalogue_find_type(all, entry.type, &same) != 0 || same.table != entry.table) return 0;
    }
    return orlenta_catalogue_find(all, "CN.ParticipantData", &entry, NULL) == 0 &&
           entry.type == in_constant &&
           orlenta_catalogue_find(orlenta_catalogue_CN(), "ParticipantData", &same, NULL) == 0 &&
           same.table == entry.table;
}

/* What a program says an open type is. */
static int finds_contents(void) {
#ifdef ORLENTA_US_H
    asn1_US_MessageFrame* frame = asn1_mallocz_value(asn1_type_US_MessageFrame);
    frame->messageId = 20;
    frame->value.type = asn1_type_US_BasicSafetyMessage;
    frame->value.data = asn1_mallocz_value(asn1_type_US_BasicSafetyMessage);
    asn1_US_BasicSafetyMessage* message = frame->value.data;
    message->coreData.id.data = asn1_mallocz(4);
    message->coreData.id.length = 4;
    message->coreData.brakes.wheelBrakes.data = asn1_mallocz(1);
    message->coreData.brakes.wheelBrakes.length = 5;
    uint8_t* bytes;
    void* value = NULL;
    int64_t size = orlenta_uper_encode2(&orlenta_codec_US_MessageFrame, &bytes, frame, NULL);
    int is_same = size > 0 && orlenta_codec_find(asn1_type_US_MessageFrame) != NULL &&
                  asn1_uper_decode(&value, asn1_type_US_MessageFrame, bytes, (size_t)size, NULL) == size &&
                  ((asn1_US_MessageFrame*)value)->value.type == asn1_type_US_BasicSafetyMessage;
    asn1_free_value(asn1_type_US_MessageFrame, value);
    asn1_free_value(asn1_type_US_MessageFrame, frame);
    asn1_free(bytes);
    return is_same;
#else
    return 1;
#endif
}

int main(void) {
    /* SEQUENCE (SIZE (1..16)) OF: head, lower, upper, stride, element. */
    const asn1_type_desc* in_table = asn1_type_CN_ParticipantList[4].type;
    const asn1_type_desc* in_code = asn1_type_CN_ParticipantData;
    if (in_table != in_code || in_table != in_constant || environ == NULL) return 1;
    if (!finds_codecs()) return 2;
    if (!finds_contents()) return 3;
    if (!is_in_catalogue()) return 4;
    fprintf(stdout, "same\n");
    return function_in_constant(stdout);
}

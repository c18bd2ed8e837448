/* Whether a table has one address: as this program sees it, in code and in constants, and as other tables refer to
 * it. */
#include <orlenta/cn.h>
#include <stdio.h>
#include <unistd.h>

extern char** environ; /* a variable of libc, which the program must be able to name as well */

static const asn1_type_desc* const in_constant = asn1_type_CN_ParticipantData;
static int (*const function_in_constant)(FILE*) = fflush;

int main(void) {
    /* SEQUENCE (SIZE (1..16)) OF: head, lower, upper, stride, element. */
    const asn1_type_desc* in_table = asn1_type_CN_ParticipantList[4].type;
    const asn1_type_desc* in_code = asn1_type_CN_ParticipantData;
    if (in_table != in_code || in_table != in_constant || environ == NULL) return 1;
    fprintf(stdout, "same\n");
    return function_in_constant(stdout);
}

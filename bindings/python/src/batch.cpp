// SPDX-License-Identifier: Apache-2.0
#include "batch.hpp"

#include <new>
#include <system_error>
#include <thread>

#include "arguments.hpp"

namespace orlenta::python {

// Small enough for records to stay in the cache, large enough for threads to be worth their start.
static constexpr size_t kSlotsAlone = 256, kSlotsOfThread = 1024;

// "raise", "none" or "return"; null stands for the first. False with an exception.
static bool take_on_error(PyObject* text, OnError* on_error) {
    static constexpr const char* names[] = {"raise", "none", "return"};
    for (int i = 0; i < 3; ++i) {
        if (text ? PyUnicode_Check(text) && PyUnicode_CompareWithASCIIString(text, names[i]) == 0 : i == 0) {
            *on_error = static_cast<OnError>(i);
            return true;
        }
    }
    PyErr_SetString(PyExc_ValueError, "errors is 'raise', 'none' or 'return'");
    return false;
}

bool take_many_options(PyObject* messages, PyObject* const* rest, ManyOptions* options) {
    options->messages = messages;
    options->offsets = rest[3] == Py_None ? nullptr : rest[3];
    options->decode.rules = find_rules(rest[0]);
    return options->decode.rules && take_on_error(rest[1], &options->on_error) &&
           take_number(rest[2], 1, 256, "threads", &options->threads) &&
           take_flag(rest[4], &options->decode.allow_trailing);
}

bool raise_at(const Problem& problem, Py_ssize_t number) {
    Ref exception(exception_of(Fault::decode, problem));
    Ref index(exception ? PyLong_FromSsize_t(number) : nullptr);
    if (index && PyObject_SetAttrString(exception.object, "index", index.object) == 0) {
        PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(exception.object)), exception.object);
    }
    return false;
}

// ---- where messages come from -----------------------------------------------------------------------------------

namespace {

struct Source {
    Ref iterator;  // null: there is one buffer
    Octets buffer;
    std::vector<uint64_t> offsets;  // the buffer's end is the last one
    size_t next = 0;
};

}  // namespace

static bool take_offset(Source& source, PyObject* number) {
    unsigned long long offset = PyLong_AsUnsignedLongLong(number);
    if (offset == static_cast<unsigned long long>(-1) && PyErr_Occurred()) return false;
    uint64_t least = source.offsets.empty() ? 0 : source.offsets.back();
    if (offset < least || offset > source.buffer.size) {
        PyErr_SetString(PyExc_ValueError, "offsets do not ascend within the buffer");
        return false;
    }
    source.offsets.push_back(offset);
    return true;
}

static bool take_offsets(Source& source, PyObject* offsets) {
    Ref iterator(PyObject_GetIter(offsets));
    while (iterator) {
        Ref item(PyIter_Next(iterator.object));
        if (!item) break;
        Ref number(PyNumber_Index(item.object));
        if (!number || !take_offset(source, number.object)) return false;
    }
    return !PyErr_Occurred();
}

static bool open_source(Source& source, const ManyOptions& options) {
    if (options.offsets) return source.buffer.open(options.messages) && take_offsets(source, options.offsets);
    if (PyBytes_Check(options.messages) || PyUnicode_Check(options.messages)) {
        PyErr_SetString(PyExc_TypeError, "an iterable of messages expected, or offsets with one buffer");
        return false;
    }
    source.iterator = Ref(PyObject_GetIter(options.messages));
    return static_cast<bool>(source.iterator);
}

// Views are copied, so that whoever made them may change them.
static bool hold(Slot& slot, PyObject* item) {
    Octets octets;
    if (PyBytes_Check(item)) {
        slot.holder = shared(item);
    } else if (PyUnicode_Check(item)) {
        slot.holder = PyUnicode_AsEncodedString(item, "utf-8", "surrogateescape");
    } else {
        slot.holder = PyBytes_FromObject(item);
    }
    if (!slot.holder || !octets.open(slot.holder)) return false;
    slot.message = {octets.data, octets.size};
    return true;
}

// 1: there was one; 0: there is none left; -1 with an exception.
static int take_message(Source& source, Slot& slot) {
    if (source.iterator) {
        Ref item(PyIter_Next(source.iterator.object));
        if (!item) return PyErr_Occurred() ? -1 : 0;
        return hold(slot, item.object) ? 1 : -1;
    }
    if (source.next + 1 >= source.offsets.size()) return 0;
    uint64_t from = source.offsets[source.next], to = source.offsets[++source.next];
    slot.message = {source.buffer.data + from, static_cast<size_t>(to - from)};
    return 1;
}

// ---- batches ------------------------------------------------------------------------------------------------------

namespace {

struct Batch {
    std::vector<Slot> slots;
    size_t used = 0;
    std::vector<Scratch> scratches;  // one for each thread

    Batch(size_t size, size_t threads) : slots(size), scratches(threads) {}
    ~Batch() { clear(); }
    void clear() {
        for (size_t i = 0; i < used; ++i) {
            slots[i].decoded.clear();
            slots[i].problem.reset();
            Py_CLEAR(slots[i].holder);
        }
        for (Scratch& scratch : scratches) reset(scratch);
        used = 0;
    }
};

}  // namespace

// False at the end of the messages, or with an exception.
static bool fill(Batch& batch, Source& source) {
    batch.clear();
    int taken = 1;
    while (taken > 0 && batch.used < batch.slots.size()) {
        taken = take_message(source, batch.slots[batch.used]);
        batch.used += taken != 0;
    }
    return taken >= 0 && batch.used > 0;
}

static void decode_slot(const Handle& handle, const DecodeOptions& options, orlenta_arena* arena,
                        Slot& slot) {
    Problem problem;
    if (decode(handle, options, slot.message, arena, slot.decoded, problem)) return;
    slot.problem = std::make_unique<Problem>(std::move(problem));
}

static void decode_share(const Handle& handle, const DecodeOptions& options, Batch& batch, size_t share) {
    size_t shares = batch.scratches.size();
    orlenta_arena* arena = arena_of(batch.scratches[share]);
    try {
        for (size_t i = batch.used * share / shares; i < batch.used * (share + 1) / shares; ++i) {
            decode_slot(handle, options, arena, batch.slots[i]);
        }
    } catch (const std::bad_alloc&) {  // what is left has neither record nor problem
    }
}

// Shares for which there is no thread are done by this one.
static void decode_all(const Handle& handle, const DecodeOptions& options, Batch& batch) {
    std::vector<std::thread> threads;
    size_t share = 1;
    try {
        for (; share < batch.scratches.size(); ++share) {
            threads.emplace_back(decode_share, std::cref(handle), std::cref(options), std::ref(batch), share);
        }
    } catch (const std::exception&) {
    }
    decode_share(handle, options, batch, 0);
    for (; share < batch.scratches.size(); ++share) decode_share(handle, options, batch, share);
    for (std::thread& thread : threads) thread.join();
}

static bool use_all(Batch& batch, Py_ssize_t first,
                    const std::function<bool(Slot& slot, Py_ssize_t number)>& use) {
    for (size_t i = 0; i < batch.used; ++i) {
        Slot& slot = batch.slots[i];
        if (!slot.decoded.record && !slot.problem) {
            PyErr_NoMemory();
            return false;
        }
        if (!use(slot, first + static_cast<Py_ssize_t>(i))) return false;
    }
    return true;
}

namespace {

// Values refer to nothing around them, so that the collector would go through all that were made, again and again, and
// find nothing.
struct CollectorPause {
#if PY_VERSION_HEX >= 0x030A0000
    int was_on = PyGC_Disable();
    ~CollectorPause() {
        if (was_on) PyGC_Enable();
    }
#endif
};

}  // namespace

static bool run(Handle& handle, const ManyOptions& options,
                const std::function<bool(Slot& slot, Py_ssize_t number)>& use) {
    Source source;
    if (!open_source(source, options)) return false;
    if (options.decode.rules->decode_arena) codec_of(handle);
    [[maybe_unused]] CollectorPause pause;
    size_t threads = static_cast<size_t>(options.threads);
    Batch batch(threads > 1 ? threads * kSlotsOfThread : kSlotsAlone, threads);
    for (Py_ssize_t first = 0; fill(batch, source); first += static_cast<Py_ssize_t>(batch.used)) {
        Py_BEGIN_ALLOW_THREADS;
        decode_all(handle, options.decode, batch);
        Py_END_ALLOW_THREADS;
        if (!use_all(batch, first, use)) return false;
    }
    return !PyErr_Occurred();
}

bool for_each_message(Handle& handle, const ManyOptions& options,
                      const std::function<bool(Slot& slot, Py_ssize_t number)>& use) {
    try {
        return run(handle, options, use);
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
        return false;
    }
}

}  // namespace orlenta::python

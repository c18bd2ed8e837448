// SPDX-License-Identifier: Apache-2.0
#include "cli/pipeline.hpp"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace cli {

using Take = std::function<bool(const Batch&, const Result&)>;

static void run_alone(Source* source, const Plan& plan, const Take& take) {
    Converter converter(plan);
    Batch batch;
    Result result;
    do {
        if (!source->next(&batch)) return;
        converter.convert(batch, &result);
    } while (take(batch, result));
}

namespace {

struct Slot {
    Batch batch;
    Result result;
    bool is_done = false;
};

// What reader, workers and writer share. Batch n is in slot n of the ring, so that nothing is allocated by one thread and
// freed by another: a block that a worker got so would tie it to the other's heap, and have the two wait for each other.
struct Queue {
    explicit Queue(size_t slots) : ring(slots) {}

    Slot& slot(size_t number) { return ring[number % ring.size()]; }

    std::mutex mutex;
    std::condition_variable has_room, has_work, has_result;
    std::vector<Slot> ring;
    size_t read = 0, taken = 0, written = 0;  // batches so far
    bool at_end = false;                      // no more batches come
    bool is_stopped = false;                  // no more results are wanted
};

}  // namespace

static void work(Queue* queue, const Plan& plan) {
    Converter converter(plan);
    std::unique_lock lock(queue->mutex);
    for (;;) {
        queue->has_work.wait(
            lock, [&] { return queue->taken < queue->read || queue->at_end || queue->is_stopped; });
        if (queue->is_stopped || queue->taken == queue->read) return;
        size_t number = queue->taken++;
        Slot& slot = queue->slot(number);
        lock.unlock();
        converter.convert(slot.batch, &slot.result);
        lock.lock();
        slot.is_done = true;
        if (number == queue->written) queue->has_result.notify_one();
    }
}

static void write_results(Queue* queue, const Take& take) {
    std::unique_lock lock(queue->mutex);
    for (;;) {
        Slot& slot = queue->slot(queue->written);
        queue->has_result.wait(lock,
                               [&] { return queue->written < queue->read ? slot.is_done : queue->at_end; });
        if (queue->written == queue->read) return;
        lock.unlock();
        bool goes_on = take(slot.batch, slot.result);
        lock.lock();
        slot.is_done = false;
        ++queue->written;
        if (!goes_on) queue->is_stopped = true;
        queue->has_room.notify_one();
        if (goes_on) continue;
        queue->has_work.notify_all();
        return;
    }
}

// False if no more is wanted.
static bool read_one(Queue* queue, Source* source) {
    std::unique_lock lock(queue->mutex);
    queue->has_room.wait(
        lock, [&] { return queue->is_stopped || queue->read - queue->written < queue->ring.size(); });
    if (queue->is_stopped) return false;
    Slot& slot = queue->slot(queue->read);
    lock.unlock();
    if (!source->next(&slot.batch)) return false;
    lock.lock();
    ++queue->read;
    queue->has_work.notify_one();
    return true;
}

static void run_together(Source* source, const Plan& plan, unsigned jobs, const Take& take) {
    Queue queue(2 * size_t{jobs} + 2);
    std::vector<std::thread> threads;
    threads.emplace_back(write_results, &queue, std::cref(take));
    for (unsigned i = 0; i < jobs; ++i) threads.emplace_back(work, &queue, std::cref(plan));
    while (read_one(&queue, source)) {
    }
    {
        std::lock_guard lock(queue.mutex);
        queue.at_end = true;
    }
    queue.has_work.notify_all();
    queue.has_result.notify_one();
    for (std::thread& thread : threads) thread.join();
}

void run_pipeline(Source* source, const Plan& plan, unsigned jobs, const Take& take) {
    if (jobs <= 1)
        run_alone(source, plan, take);
    else
        run_together(source, plan, jobs, take);
}

}  // namespace cli

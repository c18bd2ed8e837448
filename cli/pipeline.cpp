// SPDX-License-Identifier: Apache-2.0
#include "cli/pipeline.hpp"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

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

// What reader, workers and writer share.
struct Queue {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::shared_ptr<Slot>> to_convert, to_write;
    std::vector<std::shared_ptr<Slot>> used;  // whose memory serves the next ones
    size_t capacity = 0;                      // slots in `to_write`
    bool at_end = false;                      // no more batches come
    bool is_stopped = false;                  // no more results are wanted
};

}  // namespace

static void work(Queue* queue, const Plan& plan) {
    Converter converter(plan);
    std::unique_lock lock(queue->mutex);
    for (;;) {
        queue->changed.wait(lock,
                            [&] { return !queue->to_convert.empty() || queue->at_end || queue->is_stopped; });
        if (queue->is_stopped || queue->to_convert.empty()) return;
        std::shared_ptr<Slot> slot = queue->to_convert.front();
        queue->to_convert.pop_front();
        lock.unlock();
        converter.convert(slot->batch, &slot->result);
        lock.lock();
        slot->is_done = true;
        queue->changed.notify_all();
    }
}

static void write_results(Queue* queue, const Take& take) {
    std::unique_lock lock(queue->mutex);
    for (;;) {
        queue->changed.wait(
            lock, [&] { return queue->to_write.empty() ? queue->at_end : queue->to_write.front()->is_done; });
        if (queue->to_write.empty()) return;
        std::shared_ptr<Slot> slot = queue->to_write.front();
        lock.unlock();
        bool goes_on = take(slot->batch, slot->result);
        lock.lock();
        queue->used.push_back(std::move(slot));
        queue->to_write.pop_front();
        if (!goes_on) queue->is_stopped = true;
        queue->changed.notify_all();
        if (!goes_on) return;
    }
}

static std::shared_ptr<Slot> fresh_slot(Queue* queue) {
    std::lock_guard lock(queue->mutex);
    if (queue->used.empty()) return std::make_shared<Slot>();
    std::shared_ptr<Slot> slot = std::move(queue->used.back());
    queue->used.pop_back();
    slot->is_done = false;
    return slot;
}

// False if no more is wanted.
static bool read_one(Queue* queue, Source* source) {
    std::shared_ptr<Slot> slot = fresh_slot(queue);
    bool found = source->next(&slot->batch);
    std::unique_lock lock(queue->mutex);
    queue->changed.wait(lock, [&] { return queue->is_stopped || queue->to_write.size() < queue->capacity; });
    if (!found || queue->is_stopped) return false;
    queue->to_convert.push_back(slot);
    queue->to_write.push_back(std::move(slot));
    queue->changed.notify_all();
    return true;
}

static void run_together(Source* source, const Plan& plan, unsigned jobs, const Take& take) {
    Queue queue;
    queue.capacity = 2 * size_t{jobs} + 2;
    std::vector<std::thread> threads;
    threads.emplace_back(write_results, &queue, std::cref(take));
    for (unsigned i = 0; i < jobs; ++i) threads.emplace_back(work, &queue, std::cref(plan));
    while (read_one(&queue, source)) {
    }
    {
        std::lock_guard lock(queue.mutex);
        queue.at_end = true;
    }
    queue.changed.notify_all();
    for (std::thread& thread : threads) thread.join();
}

void run_pipeline(Source* source, const Plan& plan, unsigned jobs, const Take& take) {
    if (jobs <= 1)
        run_alone(source, plan, take);
    else
        run_together(source, plan, jobs, take);
}

}  // namespace cli

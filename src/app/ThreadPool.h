#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

// The one process-wide pool of worker threads for every slow job (tool jobs, thumbnail
// loads, screenshots). Tasks report back through queued Qt signals, never through the
// future: callers drop it.
//
// Locking: m_poolMutex guards the decision of an idle worker to wait (and shutdown);
// m_queueMutex guards only a push, a size read or a pop. Order is always pool mutex, then
// queue mutex. Tasks run with no lock held.
class ThreadPool
{
public:
    // Sized to the number of hardware threads; with 0 reported there are no workers and
    // tasks never run.
    explicit ThreadPool(unsigned threadCount = std::thread::hardware_concurrency());
    ~ThreadPool();

    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    static ThreadPool& instance();

    // Queues the callable (FIFO) and wakes one worker. Never refuses, never looks at the
    // stop flag. An exception thrown by the task is stored in the returned future.
    template <typename F>
    std::future<void> submit(F&& f)
    {
        auto task = std::make_shared<std::packaged_task<void()>>(std::forward<F>(f));
        std::future<void> result = task->get_future();
        {
            std::lock_guard<std::mutex> lock(m_queueMutex);
            m_tasks.emplace_back([task]() { (*task)(); });
        }
        // A worker holds the pool mutex from its empty-queue check until it waits; passing
        // through the mutex here closes the window in which this wake-up could be lost.
        { std::lock_guard<std::mutex> fence(m_poolMutex); }
        m_condition.notify_one();
        return result;
    }

    size_t workerCount() const { return m_workers.size(); }

private:
    void workerLoop(unsigned number);
    bool queueEmpty();

    std::atomic<bool> m_stop{false};
    std::deque<std::function<void()>> m_tasks;
    std::mutex m_queueMutex;
    std::vector<std::thread> m_workers;
    std::mutex m_poolMutex;
    std::condition_variable m_condition;
};

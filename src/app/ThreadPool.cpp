#include "ThreadPool.h"

#include <string>

#ifdef __linux__
#include <pthread.h>
#endif

namespace {
std::atomic<unsigned> g_workerCounter{0};
}

ThreadPool::ThreadPool(unsigned threadCount)
{
    m_workers.reserve(threadCount);
    for (unsigned i = 0; i < threadCount; ++i) {
        const unsigned number = g_workerCounter++;
        m_workers.emplace_back([this, number]() { workerLoop(number); });
    }
}

ThreadPool::~ThreadPool()
{
    {
        std::lock_guard<std::mutex> lock(m_poolMutex);
        m_stop = true;
    }
    m_condition.notify_all();
    for (std::thread& worker : m_workers)
        worker.join();
}

ThreadPool& ThreadPool::instance()
{
    static ThreadPool pool;
    return pool;
}

bool ThreadPool::queueEmpty()
{
    std::lock_guard<std::mutex> lock(m_queueMutex);
    return m_tasks.empty();
}

void ThreadPool::workerLoop(unsigned number)
{
    const std::string name = "worker--" + std::to_string(number);
#ifdef __linux__
    // Visible in debuggers and top; the kernel limits names to 15 characters.
    pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
#endif
    if (m_stop)
        return;

    std::unique_lock<std::mutex> poolLock(m_poolMutex);
    for (;;) {
        while (!m_stop && queueEmpty())
            m_condition.wait(poolLock);

        std::function<void()> task;
        {
            std::lock_guard<std::mutex> queueLock(m_queueMutex);
            if (!m_tasks.empty()) {
                task = std::move(m_tasks.front());
                m_tasks.pop_front();
            }
        }
        poolLock.unlock();
        if (task)
            task(); // packaged_task catches what the callable throws
        if (m_stop)
            return;
        poolLock.lock();
    }
}

#include "ThreadPool.h"

#include <QtTest>
#include <atomic>
#include <chrono>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace std::chrono_literals;

class TestThreadPool : public QObject
{
    Q_OBJECT
private slots:
    void concurrentSubmittersLoseNoTaskAndRunNoneTwice()
    {
        constexpr int submitters = 8;
        constexpr int perSubmitter = 2000;
        std::vector<std::atomic<int>> runs(submitters * perSubmitter);
        std::vector<std::future<void>> futures;
        std::mutex futuresMutex;
        {
            ThreadPool pool(4);
            std::vector<std::thread> threads;
            for (int s = 0; s < submitters; ++s) {
                threads.emplace_back([&, s]() {
                    for (int i = 0; i < perSubmitter; ++i) {
                        auto f = pool.submit([&runs, id = s * perSubmitter + i]() { runs[id]++; });
                        std::lock_guard<std::mutex> lock(futuresMutex);
                        futures.push_back(std::move(f));
                    }
                });
            }
            for (auto& t : threads)
                t.join();
            for (auto& f : futures)
                QCOMPARE(f.wait_for(10s), std::future_status::ready);
        }
        for (size_t i = 0; i < runs.size(); ++i)
            QCOMPARE(runs[i].load(), 1);
    }

    void singleWorkerDequeuesInSubmissionOrder()
    {
        std::vector<int> order;
        std::mutex orderMutex;
        ThreadPool pool(1);
        // Hold the only worker so the whole batch is queued before anything is dequeued.
        std::promise<void> gate;
        auto held = gate.get_future().share();
        pool.submit([held]() { held.wait(); });
        std::future<void> last;
        for (int i = 0; i < 100; ++i)
            last = pool.submit([&, i]() {
                std::lock_guard<std::mutex> lock(orderMutex);
                order.push_back(i);
            });
        gate.set_value();
        last.wait();
        QCOMPARE(order.size(), size_t(100));
        for (int i = 0; i < 100; ++i)
            QCOMPARE(order[i], i);
    }

    void throwingTaskLeavesWorkerAlive()
    {
        ThreadPool pool(1);
        auto failed = pool.submit([]() { throw std::runtime_error("boom"); });
        std::atomic<bool> ran{false};
        auto next = pool.submit([&]() { ran = true; });
        QCOMPARE(next.wait_for(5s), std::future_status::ready);
        QVERIFY(ran);
        QVERIFY_EXCEPTION_THROWN(failed.get(), std::runtime_error);
    }

    void destructionWaitsForRunningTasks()
    {
        std::atomic<int> finished{0};
        std::atomic<int> started{0};
        {
            ThreadPool pool(2);
            for (int i = 0; i < 2; ++i)
                pool.submit([&]() {
                    started++;
                    std::this_thread::sleep_for(300ms);
                    finished++;
                });
            while (started < 2)
                std::this_thread::sleep_for(5ms);
        }
        QCOMPARE(finished.load(), 2);
    }
};

QTEST_GUILESS_MAIN(TestThreadPool)
#include "tst_threadpool.moc"

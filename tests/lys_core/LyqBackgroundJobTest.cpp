#include <ToolkitApplication.h>
#include <gtest/gtest.h>
#include <lys_core/LyqBackgroundJob.h>

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QThread>

#include <atomic>
#include <new>
#include <stdexcept>

namespace {

class Job : public ::testing::Test, protected ToolkitApplication {};

bool waitFor(QSignalSpy& spy) {
    return spy.count() > 0 || spy.wait(10000);
}

}  // namespace

TEST_F(Job, works_in_another_thread_and_reports_in_this_one) {
    QThread* worker = nullptr;
    LyqBackgroundJob job([&](const LyqBackgroundJob::Progress&, QString&) {
        worker = QThread::currentThread();
        return true;
    });
    QThread* reporter = nullptr;
    QObject::connect(&job, &LyqBackgroundJob::finished, &job, [&] { reporter = QThread::currentThread(); });
    QSignalSpy finished(&job, &LyqBackgroundJob::finished);
    EXPECT_TRUE(job.start());
    EXPECT_TRUE(job.isRunning());
    EXPECT_FALSE(job.start());
    ASSERT_TRUE(waitFor(finished));
    EXPECT_FALSE(job.isRunning());
    EXPECT_TRUE(finished[0][0].toBool());
    EXPECT_NE(worker, nullptr);
    EXPECT_NE(worker, QThread::currentThread());
    EXPECT_EQ(reporter, QThread::currentThread());
}

TEST_F(Job, tells_how_far_it_is) {
    std::atomic<int> step{0};
    LyqBackgroundJob job([&](const LyqBackgroundJob::Progress& progress, QString&) {
        progress(0.25);
        while (step == 0) {
            QThread::msleep(1);
        }
        return progress(1.0);
    });
    QSignalSpy progress(&job, &LyqBackgroundJob::progressChanged);
    QSignalSpy finished(&job, &LyqBackgroundJob::finished);
    job.start();
    while (progress.isEmpty() || progress.last()[0].toDouble() < 0.25) {
        ASSERT_TRUE(progress.wait(10000));
    }
    EXPECT_EQ(progress.last()[0].toDouble(), 0.25);
    step = 1;
    ASSERT_TRUE(waitFor(finished));
    EXPECT_EQ(progress.last()[0].toDouble(), 1.0);
}

TEST_F(Job, a_cancelled_job_ends_soon) {
    LyqBackgroundJob job([](const LyqBackgroundJob::Progress& progress, QString&) {
        while (progress(0.5)) {
            QThread::msleep(1);
        }
        return false;
    });
    QSignalSpy finished(&job, &LyqBackgroundJob::finished);
    job.start();
    job.cancel();
    ASSERT_TRUE(waitFor(finished));
    EXPECT_FALSE(finished[0][0].toBool());
    EXPECT_TRUE(job.isCancelled());
}

TEST_F(Job, what_the_work_throws_is_a_failure_with_a_message) {
    LyqBackgroundJob memory([](const LyqBackgroundJob::Progress&, QString&) -> bool { throw std::bad_alloc(); });
    LyqBackgroundJob other(
        [](const LyqBackgroundJob::Progress&, QString&) -> bool { throw std::runtime_error("no luck"); });
    QSignalSpy first(&memory, &LyqBackgroundJob::finished);
    QSignalSpy second(&other, &LyqBackgroundJob::finished);
    memory.start();
    other.start();
    ASSERT_TRUE(waitFor(first));
    ASSERT_TRUE(waitFor(second));
    EXPECT_FALSE(first[0][0].toBool());
    EXPECT_TRUE(first[0][1].toString().contains("memory"));
    EXPECT_EQ(second[0][1].toString(), "no luck");
}

TEST_F(Job, destroying_a_running_job_cancels_it_and_waits) {
    std::atomic<bool> left{false};
    {
        LyqBackgroundJob job([&](const LyqBackgroundJob::Progress& progress, QString&) {
            while (progress(0.0)) {
                QThread::msleep(1);
            }
            left = true;
            return false;
        });
        job.start();
    }
    EXPECT_TRUE(left);
}

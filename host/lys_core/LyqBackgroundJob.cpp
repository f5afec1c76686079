#include <lyr_core/LyrModuleLoader.h>
#include <lys_core/LyqBackgroundJob.h>

#include <QPointer>
#include <QTimer>

#include <atomic>
#include <exception>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

namespace {

constexpr int POLL_MILLISECONDS = 20;

}  // namespace

struct LyqBackgroundJob::Private : LyrModuleLoader::UnloadGuard {
    LyrString reasonToStay(const char* name) override {
        return started && !reported && module == QString::fromUtf8(name)
                   ? LyrString::fromUtf8("work of it is under way; cancel it first")
                   : LyrString();
    }

    void run() {
        QString text;
        bool done = false;
        try {
            done = work(
                [this](double part) {
                    progress.store(part, std::memory_order_relaxed);
                    return !cancelled.load(std::memory_order_relaxed);
                },
                text);
        } catch (const std::bad_alloc&) {
            text = LyqBackgroundJob::tr("There is not enough memory. Close other programs or take a part of the data.");
        } catch (const std::exception& problem) {
            text = QString::fromUtf8(problem.what());
        }
        message = text;
        succeeded = done;
        ended.store(true, std::memory_order_release);
    }

    Work work;
    QString module;
    QTimer timer;
    std::thread thread;
    std::atomic<double> progress{0.0};
    std::atomic<bool> cancelled{false};
    std::atomic<bool> ended{false};
    double told = -1.0;
    QString message;  ///< the work's, until it has ended
    bool succeeded = false;
    bool started = false;
    bool reported = false;
};

LyqBackgroundJob::LyqBackgroundJob(Work work, const QString& module, QObject* parent)
    : QObject(parent), d(new Private) {
    d->work = std::move(work);
    d->module = module;
    d->timer.setInterval(POLL_MILLISECONDS);
    connect(&d->timer, &QTimer::timeout, this, &LyqBackgroundJob::poll);
    LyrModuleLoader::addUnloadGuard(d.get());
}

LyqBackgroundJob::~LyqBackgroundJob() {
    cancel();
    if (d->thread.joinable()) {
        d->thread.join();
    }
    LyrModuleLoader::removeUnloadGuard(d.get());
}

bool LyqBackgroundJob::start() {
    if (d->started) {
        return false;
    }
    d->started = true;
    try {
        d->thread = std::thread([data = d.get()] { data->run(); });
    } catch (const std::system_error&) {
        d->message = tr("No further thread can be started. Close other programs and try again.");
        d->ended = true;
    }
    d->timer.start();
    return true;
}

void LyqBackgroundJob::cancel() {
    d->cancelled = true;
}

bool LyqBackgroundJob::isRunning() const {
    return d->started && !d->reported;
}

bool LyqBackgroundJob::isCancelled() const {
    return d->cancelled;
}

const QString& LyqBackgroundJob::module() const {
    return d->module;
}

void LyqBackgroundJob::poll() {
    const bool ended = d->ended.load(std::memory_order_acquire);
    const QPointer<LyqBackgroundJob> self(this);
    if (const double part = d->progress; part != d->told) {
        d->told = part;
        Q_EMIT progressChanged(part);
    }
    if (!self || !ended) {
        return;
    }
    d->timer.stop();
    if (d->thread.joinable()) {
        d->thread.join();
    }
    d->reported = true;
    d->work = nullptr;
    Q_EMIT finished(d->succeeded, d->message);
}

#include "Foreground.h"

#include <QCoreApplication>
#include <QThread>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace db::foreground {

namespace {

using Clock = std::chrono::steady_clock;

// How long the store counts as used after a statement of the main thread.
constexpr std::chrono::milliseconds Moment{100};

struct State {
    std::mutex lock;
    std::condition_variable released;
    Clock::time_point lastUse;
    int holds = 0;
};

State& state() {
    static State s;
    return s;
}

bool inMainThread() {
    const QCoreApplication* app = QCoreApplication::instance();
    return app && app->thread() == QThread::currentThread();
}

} // namespace

void used() {
    if (!inMainThread())
        return;
    State& s = state();
    const std::lock_guard<std::mutex> guard(s.lock);
    s.lastUse = Clock::now();
}

Hold::Hold() : m_counted(inMainThread()) {
    if (!m_counted)
        return;
    State& s = state();
    const std::lock_guard<std::mutex> guard(s.lock);
    s.lastUse = Clock::now();
    ++s.holds;
}

Hold::~Hold() {
    if (!m_counted)
        return;
    State& s = state();
    {
        const std::lock_guard<std::mutex> guard(s.lock);
        --s.holds;
        s.lastUse = Clock::now();
    }
    s.released.notify_all();
}

bool waitUntilFree(int milliseconds) {
    if (inMainThread())
        return true;
    const Clock::time_point limit = Clock::now() + std::chrono::milliseconds(milliseconds);
    State& s = state();
    std::unique_lock<std::mutex> guard(s.lock);
    for (;;) {
        const Clock::time_point now = Clock::now();
        if (s.holds == 0 && now >= s.lastUse + Moment)
            return true;
        if (now >= limit)
            return false;
        // A hold ends with a notice; a moment runs out by itself.
        s.released.wait_until(guard, s.holds > 0 ? limit : std::min(limit, s.lastUse + Moment));
    }
}

} // namespace db::foreground

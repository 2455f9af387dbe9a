#include "Foreground.h"

#include <QCoreApplication>
#include <QThread>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <vector>

namespace db::foreground {

namespace {

using Clock = std::chrono::steady_clock;

// How long the store counts as used after a statement of the main thread.
constexpr std::chrono::milliseconds Moment{100};

} // namespace

struct State {
    std::mutex lock;
    std::condition_variable released;
    Clock::time_point lastUse;
    int holds = 0;
    std::vector<YieldingGroup*> groups;

    // Under the lock, in the main thread: the screens use the store now.
    void use() {
        lastUse = Clock::now();
        for (YieldingGroup* group : groups)
            group->stop(lastUse);
    }

    // Under the lock.
    bool free(Clock::time_point now) const { return holds == 0 && now >= lastUse + Moment; }
};

namespace {

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
    s.use();
}

Hold::Hold() : m_counted(inMainThread()) {
    if (!m_counted)
        return;
    State& s = state();
    const std::lock_guard<std::mutex> guard(s.lock);
    s.use();
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

bool inUse() {
    State& s = state();
    const std::lock_guard<std::mutex> guard(s.lock);
    return !s.free(Clock::now());
}

bool waitUntilFree(int milliseconds) {
    if (inMainThread())
        return true;
    const Clock::time_point limit = Clock::now() + std::chrono::milliseconds(milliseconds);
    State& s = state();
    std::unique_lock<std::mutex> guard(s.lock);
    for (;;) {
        const Clock::time_point now = Clock::now();
        if (s.free(now))
            return true;
        if (now >= limit)
            return false;
        // A hold ends with a notice; a moment runs out by itself.
        s.released.wait_until(guard, s.holds > 0 ? limit : std::min(limit, s.lastUse + Moment));
    }
}

YieldingGroup::YieldingGroup(int group, std::chrono::milliseconds longest)
    : m_group(group), m_counted(!inMainThread()), m_longest(longest) {
    if (!m_counted)
        return;
    State& s = state();
    const std::lock_guard<std::mutex> guard(s.lock);
    s.groups.push_back(this);
    // A group that starts while the screens work waits for them from the start.
    const Clock::time_point now = Clock::now();
    if (!s.free(now))
        stop(now);
}

YieldingGroup::~YieldingGroup() {
    if (!m_counted)
        return;
    State& s = state();
    const std::lock_guard<std::mutex> guard(s.lock);
    std::erase(s.groups, this);
    resume();
}

void YieldingGroup::stop(Clock::time_point now) {
    if (m_stopped || now < m_runsUntil)
        return;
    m_stopped = ::kill(-m_group, SIGSTOP) == 0;
    m_stoppedAt = now;
}

void YieldingGroup::resume() {
    if (m_stopped)
        m_stopped = ::kill(-m_group, SIGCONT) != 0;
}

bool YieldingGroup::stopped() {
    if (!m_counted)
        return false;
    State& s = state();
    const std::lock_guard<std::mutex> guard(s.lock);
    const Clock::time_point now = Clock::now();
    if (m_stopped && !s.free(now) && now >= m_stoppedAt + m_longest) {
        m_runsUntil = now + std::chrono::seconds(1);
        resume();
    }
    if (s.free(now))
        resume();
    return m_stopped;
}

} // namespace db::foreground

#pragma once

// The screens' use of the data store, for work in other threads that gives way to them. The
// program's main thread, which runs the screens, uses the store while it keeps a transaction or
// a streaming statement open, and for a moment after each statement, which may be one of several
// that a screen runs for one click. Meanwhile a write of the background would make the screen
// wait for the file: the background waits first.
#include <chrono>

namespace db::foreground {

// Notes that the calling thread uses the store, or is about to: the data layer tells each
// statement, the background work the clerk's keys and clicks. Only the main thread counts.
void used();

// A transaction or a streaming statement of the calling thread, held from construction to
// destruction; only the main thread's count.
class Hold {
  public:
    Hold();
    ~Hold();
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

  private:
    bool m_counted;
};

// Whether the screens use the store now, or did a moment ago.
bool inUse();

// Waits until the screens do not use the store, up to `milliseconds`: false when they still do.
// The main thread never waits for itself.
bool waitUntilFree(int milliseconds);

// A process group that works for a thread of the background (the reader of soft copies), for as
// long as this object lives. The screens' next statement, key or click stops the group at once
// (SIGSTOP), as does their work under way when it begins, so that their answer has the processor to itself;
// the background continues it (SIGCONT) when the screens leave the store alone again, and for good at
// destruction. A group of the main thread is never stopped.
class YieldingGroup {
  public:
    // A group that the screens keep stopped for `longest` runs for a second before they may stop
    // it again: screens that hold the store on and on slow the work down, never end it.
    explicit YieldingGroup(int group, std::chrono::milliseconds longest = std::chrono::seconds(10));
    ~YieldingGroup();
    YieldingGroup(const YieldingGroup&) = delete;
    YieldingGroup& operator=(const YieldingGroup&) = delete;

    // Continues the group once the screens leave the store alone; true while it stays stopped.
    bool stopped();

  private:
    friend struct State;
    using Clock = std::chrono::steady_clock;
    // Under the lock of the state.
    void stop(Clock::time_point now);
    void resume();

    int m_group;
    bool m_counted;
    std::chrono::milliseconds m_longest;
    bool m_stopped = false;
    Clock::time_point m_stoppedAt;
    Clock::time_point m_runsUntil; // not stopped before
};

} // namespace db::foreground

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

#include <pthread.h>
#include <sched.h>

namespace murvo::test {

/// Finds the moments at which a processor did nothing for anybody, as the host of a virtual machine may have
/// it: on each processor a thread that goes before all others wakes every millisecond and notes when it was
/// woken late. A figure that was measured across such a moment tells of the host, not of the program.
///
/// Any thread. Needs the right to real-time priority (root); isReliable() tells whether it has it.
class StolenTime {
  public:
    using Clock = std::chrono::steady_clock;

    StolenTime() {
        for (unsigned cpu = 0; cpu < std::thread::hardware_concurrency(); ++cpu) {
            _threads.emplace_back([this] { watch(); });
            const pthread_t thread = _threads.back().native_handle();
            cpu_set_t only;
            CPU_ZERO(&only);
            CPU_SET(cpu, &only);
            sched_param first{};
            first.sched_priority = sched_get_priority_max(SCHED_FIFO);
            if (pthread_setaffinity_np(thread, sizeof only, &only) != 0 ||
                pthread_setschedparam(thread, SCHED_FIFO, &first) != 0)
                _isReliable = false;
        }
    }

    ~StolenTime() {
        _ends = true;
        for (std::thread &thread : _threads)
            thread.join();
    }

    StolenTime(const StolenTime &) = delete;
    StolenTime &operator=(const StolenTime &) = delete;

    [[nodiscard]] bool isReliable() const { return _isReliable; }

    /// For how long processors were away between the two, ms; of two at once, both count.
    [[nodiscard]] double totalMs(Clock::time_point from, Clock::time_point until) const {
        const std::lock_guard lock(_mutex);
        Clock::duration total{};
        for (const auto &[begin, end] : _gaps)
            total += std::max(Clock::duration::zero(), std::min(end, until) - std::max(begin, from));
        return std::chrono::duration<double, std::milli>(total).count();
    }

  private:
    void watch() {
        constexpr std::chrono::milliseconds pause(1);
        constexpr std::chrono::milliseconds noted(3);
        while (!_ends) {
            const auto due = Clock::now() + pause;
            std::this_thread::sleep_until(due);
            const auto woken = Clock::now();
            if (woken - due < noted)
                continue;
            const std::lock_guard lock(_mutex);
            _gaps.emplace_back(due, woken);
        }
    }

    mutable std::mutex _mutex;
    std::vector<std::pair<Clock::time_point, Clock::time_point>> _gaps;
    std::atomic<bool> _ends{false};
    std::atomic<bool> _isReliable{true};
    std::vector<std::thread> _threads;
};

} // namespace murvo::test

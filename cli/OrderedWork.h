#pragma once

#include "cli/CommandError.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace encap::cli {

/// Does numbered pieces of work on threads of its own and hands their results out in the order of
/// the numbers. Threads run ahead of the result that is waited for by a fixed number of pieces at
/// most, so that memory does not grow with the number of pieces. Used by the thread that made it.
template <class Result, class Thread = std::jthread>
class OrderedWork {
public:
    using Piece = std::function<Result(std::size_t number)>;
    enum class State { Ready, Waiting, Done };

    /// Pieces 0 to count-1 on that many threads, or on as many as the system lets it have. Each
    /// thread calls make once for what it does its pieces with, which only that thread uses. make
    /// must bear being called by several at a time. Throws CommandError when there is no thread.
    OrderedWork(std::size_t count, std::size_t threads, std::function<Piece()> make)
        : m_count(count), m_slots(threads * kAheadPerThread), m_make(std::move(make))
    {
        threads = std::min(threads, count);
        m_threads.reserve(threads);
        bool isStarted = true;
        while (isStarted && m_threads.size() < threads) {
            isStarted = StartThread();
        }
    }
    OrderedWork(const OrderedWork&) = delete;
    OrderedWork& operator=(const OrderedWork&) = delete;
    /// Waits for the pieces that have begun; no other one begins.
    ~OrderedWork() { Stop(nullptr); }

    /// Moves the next result into result when it comes within the time. Throws what a piece or make
    /// threw; there are no more results then.
    State Next(Result& result, std::chrono::milliseconds time)
    {
        std::unique_lock lock(m_mutex);
        if (m_delivered == m_count) {
            return State::Done;
        }
        std::optional<Result>& slot = m_slots[m_delivered % m_slots.size()];
        const bool hasCome =
            m_resultCame.wait_for(lock, time, [&] { return slot.has_value() || m_failure; });
        if (m_failure) {
            std::rethrow_exception(m_failure);
        }
        if (!hasCome) {
            return State::Waiting;
        }
        result = std::move(*slot);
        slot.reset();
        ++m_delivered;
        m_roomCame.notify_all();
        return State::Ready;
    }

private:
    static constexpr std::size_t kAheadPerThread = 32;

    /// False when there can be no more than there are.
    bool StartThread()
    {
        try {
            m_threads.emplace_back([this] { Run(); });
            return true;
        } catch (const std::exception&) {
            if (m_threads.empty()) {
                throw CommandError(ExitStatus::Failed,
                                   L"the system lets the program start no thread: a limit of "
                                   L"processes or of memory is reached");
            }
            return false;
        }
    }

    void Run()
    {
        try {
            const Piece piece = m_make();
            for (std::size_t number = 0; Take(number);) {
                Put(number, piece(number));
            }
        } catch (...) {
            Stop(std::current_exception());
        }
    }

    /// The next piece to do, once there is room for its result; false when there is none.
    bool Take(std::size_t& number)
    {
        std::unique_lock lock(m_mutex);
        m_roomCame.wait(lock, [&] {
            return m_isStopping || m_taken == m_count || m_taken < m_delivered + m_slots.size();
        });
        if (m_isStopping || m_taken == m_count) {
            return false;
        }
        number = m_taken++;
        return true;
    }

    void Put(std::size_t number, Result result)
    {
        const std::lock_guard lock(m_mutex);
        m_slots[number % m_slots.size()] = std::move(result);
        if (number == m_delivered) {
            m_resultCame.notify_one();
        }
    }

    void Stop(std::exception_ptr failure)
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
        if (!m_failure) {
            m_failure = std::move(failure);
        }
        m_roomCame.notify_all();
        m_resultCame.notify_one();
    }

    std::mutex m_mutex;
    std::condition_variable m_roomCame;
    std::condition_variable m_resultCame;
    std::size_t m_count;
    std::size_t m_taken = 0;
    std::size_t m_delivered = 0;
    std::vector<std::optional<Result>> m_slots; ///< piece n in slot n modulo their number
    bool m_isStopping = false;
    std::exception_ptr m_failure;
    std::function<Piece()> m_make;
    std::vector<Thread> m_threads; ///< last: they end before what they use
};

} // namespace encap::cli

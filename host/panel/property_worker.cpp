#include "host/panel/property_worker.h"

#include <utility>

#include "host/contract/host_boundary.h"

namespace QVHost {
namespace {

constexpr size_t kThreads = 2;  // so that one slow server does not hold up all the rows

}  // namespace

PropertyWorker::PropertyWorker(const ColumnValues& columns, std::function<void()> onAnswers)
    : m_columns(columns), m_onAnswers(std::move(onAnswers)) {}

PropertyWorker::~PropertyWorker() {
    {
        const std::lock_guard lock(m_mutex);
        for (std::jthread& thread : m_threads) thread.request_stop();
    }
    m_isAsked.WakeAll();
}

void PropertyWorker::Ask(Request request) {
    {
        const std::lock_guard lock(m_mutex);
        m_requests.push_back(std::move(request));
    }
    // Where no property column is shown there is no thread.
    GuardedCall([&] {
        // A thread that the system does not give is asked for again with the next row; what waits keeps waiting.
        while (m_threads.size() < kThreads) m_threads.emplace_back([this](const std::stop_token& stop) { Work(stop); });
    });
    m_isAsked.WakeOne();
}

void PropertyWorker::ForgetRequests() {
    const std::lock_guard lock(m_mutex);
    m_requests.clear();
}

std::vector<PropertyWorker::Answer> PropertyWorker::TakeAnswers() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_answers, {});
}

void PropertyWorker::Work(const std::stop_token& stop) {
    for (;;) {
        Request request;
        {
            std::unique_lock lock(m_mutex);
            m_isAsked.WaitUntil(lock, [&] { return stop.stop_requested() || !m_requests.empty(); });
            if (stop.stop_requested()) return;
            request = std::move(m_requests.back());
            m_requests.pop_back();
        }
        // A row that memory does not suffice for stays without its properties; the next ones get theirs.
        GuardedCall([&] {
            Answer answer = {request.row, request.reading, {}};
            for (const ColumnValues::Column& column : m_columns.Columns())
                answer.properties.push_back(ColumnValues::ValueOf(*request.item, column).value_or(L""));
            Deliver(std::move(answer));
        });
    }
}

void PropertyWorker::Deliver(Answer answer) {
    bool isFirst = false;
    {
        const std::lock_guard lock(m_mutex);
        isFirst = m_answers.empty();
        m_answers.push_back(std::move(answer));
    }
    if (isFirst) m_onAnswers();
}

}  // namespace QVHost

// property_worker.h - works out the property columns of files on threads of its own: a server that is asked for the
// name of an owner may take seconds.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "host/app/column_values.h"
#include "win32/system_lock.h"

namespace QVHost {

class PropertyWorker {
public:
    struct Request {
        std::shared_ptr<FileItem> item;
        size_t row = 0;
        uint64_t reading = 0;  // which reading of the folder the row's number belongs to
    };
    struct Answer {
        size_t row = 0;
        uint64_t reading = 0;
        std::vector<std::wstring> properties;  // by column; "" for a file without the value
    };

    /// `onAnswers` is called on a thread of the worker when answers are there and none were before.
    PropertyWorker(const ColumnValues& columns, std::function<void()> onAnswers);
    PropertyWorker(const PropertyWorker&) = delete;
    PropertyWorker& operator=(const PropertyWorker&) = delete;
    /// Waits for the values that are being worked out; those that only wait are forgotten.
    ~PropertyWorker();

    /// The latest request is answered first: it is what a person looks at now.
    void Ask(Request request);
    void ForgetRequests();
    std::vector<Answer> TakeAnswers();

private:
    void Work(const std::stop_token& stop);
    void Deliver(Answer answer);

    const ColumnValues& m_columns;
    std::function<void()> m_onAnswers;
    Win32::SystemLock m_mutex;
    Win32::SystemCondition m_isAsked;
    std::vector<Request> m_requests;
    std::vector<Answer> m_answers;
    std::vector<std::jthread> m_threads;  // last: they end before what they use
};

}  // namespace QVHost

// SPDX-License-Identifier: Apache-2.0
#include "python/ScanMany.h"

#include "apps/settings/SettingsTable.h"
#include "platform/SignalsBlocked.h"
#include "python/Held.h"

#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <utility>

namespace Quorvane::Python {

namespace {

namespace py = pybind11;

// Enough that no thread waits while Python takes answers one by one.
constexpr std::size_t mostUnderWay = 512;
constexpr std::size_t submittedTogether = 16;

// Those that exist, to be stopped before the interpreter ends. Under the interpreter's lock.
std::set<ScanMany*>& s_all() {
    static std::set<ScanMany*> all;
    return all;
}

} // namespace

ScanMany::ScanMany(std::shared_ptr<Scanner const> scanner, py::object messages,
                   unsigned int threads)
    : m_scanner(std::move(scanner)), m_messages(std::move(messages)), m_process(::getpid()) {
    if (threads != 1) {
        SignalsBlocked const blocked; // the interpreter handles them
        m_pool = std::make_unique<OrderedPool>(
            threads,
            [this](InputItem const& item) {
                return [this, result = resultOf(item)]() mutable {
                    return deliver(std::move(result));
                };
            },
            m_stop.get_token());
    }
    s_all().insert(this);
}

ScanMany::~ScanMany() { // NOLINT(bugprone-exception-escape)
    stop();
    s_all().erase(this);
}

void ScanMany::stop() {
    m_isAtEnd = true;
    if (::getpid() != m_process) {
        static_cast<void>(m_pool.release()); // nobody could wait for its threads here
        return;
    }
    m_stop.request_stop();
    py::gil_scoped_release const release;
    m_pool.reset();
}

void ScanMany::stopAtExit() {
    if (!m_isBusy) {
        stop();
    }
}

// False at the end.
bool ScanMany::take(Message& message) {
    if (m_isAtEnd) {
        return false;
    }
    try {
        auto const next = py::reinterpret_steal<py::object>(PyIter_Next(m_messages.ptr()));
        if (!next) {
            m_isAtEnd = true;
            return PyErr_Occurred() == nullptr ? false : throw py::error_already_set();
        }
        message = messageOf(next);
        return true;
    } catch (...) {
        m_thrown = std::current_exception();
        m_isAtEnd = true;
        return false;
    }
}

Answer ScanMany::nextAlone() {
    Message message;
    if (!take(message)) {
        if (auto const thrown = std::exchange(m_thrown, nullptr)) {
            std::rethrow_exception(thrown);
        }
        throw py::stop_iteration();
    }
    py::gil_scoped_release const release;
    return m_scanner->judge(message);
}

// While answers wait, a few messages for each that is given away; otherwise until one comes or
// enough are under way.
void ScanMany::readAhead() {
    constexpr int few = 2;
    Message message;
    for (int i = 0; m_underWay < mostUnderWay && (i < few || !hasResult()) && take(message); ++i) {
        add(std::move(message));
    }
    if (m_taken.empty() && !m_toSubmit.empty()) {
        py::gil_scoped_release const release;
        m_pool->submit(m_toSubmit);
    }
}

// A message waits for others, so that locks cost little, unless the threads have nothing to do.
void ScanMany::add(Message message) {
    InputItem item;
    item.m_source = std::move(message.m_source);
    item.m_headers = std::move(message.m_headers);
    item.m_problem = std::move(message.m_error);
    m_toSubmit.push_back(std::move(item));
    ++m_underWay;
    bool const isIdle = m_underWay == m_toSubmit.size() + m_taken.size();
    if (isIdle || m_toSubmit.size() == submittedTogether) {
        py::gil_scoped_release const release;
        m_pool->submit(m_toSubmit);
    }
}

// On a thread of the pool. Of running out of memory the pool makes a problem of the message.
ScanMany::Result ScanMany::resultOf(InputItem const& item) const {
    try {
        return m_scanner->judge({item.m_source, item.m_headers, item.m_problem});
    } catch (std::bad_alloc const&) {
        throw;
    } catch (...) {
        return std::current_exception();
    }
}

// On a thread of the pool.
bool ScanMany::deliver(Result result) {
    std::lock_guard const lock(m_mutex);
    try {
        m_results.push_back(std::move(result));
    } catch (std::bad_alloc const&) {
        m_isOutOfMemory = true;
    }
    if (m_results.size() <= 1) { // nobody waits while there are some
        m_hasResults.notify_one();
    }
    return !m_isOutOfMemory;
}

bool ScanMany::hasResult() {
    if (!m_taken.empty()) {
        return true;
    }
    std::lock_guard const lock(m_mutex);
    m_taken.swap(m_results);
    return !m_taken.empty();
}

void ScanMany::waitForResults() {
    py::gil_scoped_release const release;
    std::unique_lock lock(m_mutex);
    m_hasResults.wait(lock, [this] { return !m_results.empty() || m_isOutOfMemory; });
    if (m_results.empty()) {
        throw std::bad_alloc();
    }
    m_taken.swap(m_results);
}

ScanMany::Result ScanMany::takeResult() {
    if (!hasResult()) {
        waitForResults();
    }
    auto result = std::move(m_taken.front());
    m_taken.pop_front();
    --m_underWay;
    return result;
}

Answer ScanMany::next() {
    if (m_isBusy) {
        throw py::value_error("another thread is taking these answers");
    }
    if (::getpid() != m_process) {
        throw std::runtime_error("this scan belongs to the parent of this process; begin one here");
    }
    Held const busy(m_isBusy);
    m_scanner->requireInForce();
    if (m_pool == nullptr) {
        return nextAlone();
    }
    readAhead();
    if (m_underWay == 0) {
        if (auto const thrown = std::exchange(m_thrown, nullptr)) {
            std::rethrow_exception(thrown);
        }
        throw py::stop_iteration();
    }
    auto result = takeResult();
    if (auto const* const thrown = std::get_if<std::exception_ptr>(&result)) {
        std::rethrow_exception(*thrown);
    }
    return std::get<Answer>(std::move(result));
}

std::unique_ptr<ScanMany> scanMany(std::shared_ptr<Scanner const> const& scanner,
                                   py::iterable const& messages, unsigned int threads) {
    scanner->requireInForce();
    SettingsStore().set("jobs", {std::to_string(threads)}, "Python"); // checks the number
    return std::make_unique<ScanMany>(scanner, py::iter(messages),
                                      threads != 0 ? threads : scanner->jobs());
}

void bindScanMany(py::module_& module) {
    py::class_<ScanMany>(module, "Scans", py::is_final(), "The iterator of Scanner.scan_many.")
        .def("__iter__", [](py::object const& self) { return self; })
        .def("__next__", &ScanMany::next);
    py::module_::import("atexit").attr("register")(py::cpp_function([] {
        while (!s_all().empty()) {
            auto* const each = *s_all().begin();
            s_all().erase(each);
            each->stopAtExit();
        }
    }));
}

} // namespace Quorvane::Python

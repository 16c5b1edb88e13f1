// SPDX-License-Identifier: Apache-2.0
#include "python/ScanMany.h"

#include "apps/settings/SettingsTable.h"
#include "python/Held.h"

#include <pthread.h>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

namespace Quorvane::Python {

namespace {

namespace py = pybind11;

// Those that exist, to be stopped before the interpreter ends. Under the interpreter's lock.
std::set<ScanMany*>& s_all() {
    static std::set<ScanMany*> all;
    return all;
}

// How often this process and those before it forked, as children count; a system call for each
// answer would cost more.
unsigned int s_forks = 0;

} // namespace

ScanMany::ScanMany(ScannerPointer scanner, py::object messages, unsigned int threads)
    : m_scanner(std::move(scanner)), m_messages(std::move(messages)), m_threads(threads),
      m_forks(s_forks) {
    s_all().insert(this);
}

ScanMany::~ScanMany() {
    stop();
    s_all().erase(this);
}

void ScanMany::stop() {
    m_isEnded = true;
    if (m_forks == s_forks) {
        m_answers.reset();
    } else {
        static_cast<void>(m_answers.release()); // nobody could wait for its threads here
    }
}

void ScanMany::stopAtExit() {
    if (!m_isBusy) {
        stop();
    }
}

void ScanMany::begin() {
    if (m_threads == 1) {
        m_answers = judgedByCaller(m_scanner, m_messages);
    } else if (py::isinstance<MessageList>(m_messages)) {
        m_answers =
            readByThreads(m_scanner, m_messages.cast<MessageList&>(), m_messages, m_threads);
    } else {
        m_answers = judgedByThreads(m_scanner, m_messages, m_threads);
    }
}

Answer ScanMany::next() {
    if (m_isBusy) {
        throw py::value_error("another thread is taking these answers");
    }
    if (m_forks != s_forks) {
        throw std::runtime_error("this scan belongs to the parent of this process; begin one here");
    }
    Held const busy(m_isBusy);
    m_scanner->requireInForce();
    if (m_answers == nullptr && !m_isEnded) {
        begin();
    }
    auto answer = m_isEnded ? std::nullopt : m_answers->next();
    if (!answer) {
        stop();
        throw py::stop_iteration();
    }
    return *std::move(answer);
}

std::unique_ptr<ScanMany> scanMany(ScannerPointer const& scanner, py::iterable const& messages,
                                   unsigned int threads) {
    scanner->requireInForce();
    SettingsStore().set("jobs", {std::to_string(threads)}, "Python"); // checks the number
    return std::make_unique<ScanMany>(scanner, py::iter(messages),
                                      threads != 0 ? threads : scanner->jobs());
}

void bindScanMany(py::module_& module) {
    pthread_atfork(nullptr, nullptr, [] { ++s_forks; });
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

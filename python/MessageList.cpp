// SPDX-License-Identifier: Apache-2.0
#include "python/MessageList.h"

#include "apps/input/Interrupt.h"
#include "python/Argument.h"

#include <cerrno>
#include <memory>
#include <poll.h>
#include <utility>

namespace Quorvane::Python {

namespace {

namespace py = pybind11;

py::tuple s_state(Message const& message) {
    return py::make_tuple(py::bytes(message.m_source), py::bytes(message.m_headers),
                          py::bytes(message.m_error), message.m_exitStatus);
}

Message s_fromState(py::tuple const& state) {
    if (state.size() != 4) {
        throw py::value_error("this is not the state of a Message");
    }
    return {state[0].cast<std::string>(), state[1].cast<std::string>(),
            state[2].cast<std::string>(), state[3].cast<int>()};
}

std::string s_repr(Message const& message) {
    auto const text = [](py::object const& value) { return py::repr(value).cast<std::string>(); };
    return "Message(source=" + text(fileName(message.m_source)) +
           (message.m_error.empty() ? ", " + std::to_string(message.m_headers.size()) + " bytes"
                                    : ", error=" + text(textOf(message.m_error))) +
           ")";
}

std::vector<std::string> s_paths(py::args const& paths) {
    if (paths.empty()) {
        throw py::type_error("at least one path is needed");
    }
    std::vector<std::string> texts;
    for (auto const path : paths) {
        texts.push_back(pathOf(path));
    }
    return texts;
}

std::unique_ptr<MessageList> s_messages(py::args const& paths, py::object const& settings) {
    return std::make_unique<MessageList>(s_paths(paths), settingsOf(settings).values().m_limits);
}

std::unique_ptr<FileWalker> s_files(py::args const& paths) {
    return std::make_unique<FileWalker>(s_paths(paths));
}

// A folder that cannot be opened takes its own place: whoever reads it finds out why.
py::str s_nextFile(FileWalker& files) {
    FileWalker::Entry entry;
    if (!files.next(entry)) {
        throw py::stop_iteration();
    }
    auto const number = entry.m_name.m_number;
    return fileName(entry.m_name.source() + (number == 0 ? "" : ':' + std::to_string(number)));
}

} // namespace

// The interpreter only notes that a signal came. One that comes right before the wait would not end
// it, and a stop ends none, so no wait is long.
void MessageWait::waitForInput(int descriptor) const {
    constexpr int longestWait = 100; // milliseconds
    pollfd waiting{descriptor, POLLIN, 0};
    if (isInputReady(descriptor)) {
        return;
    }
    if (m_beforeWait) {
        m_beforeWait();
    }
    for (int ready = 0; (ready = ::poll(&waiting, 1, longestWait)) <= 0;) {
        if (ready < 0 && errno != EINTR) {
            return; // the read will fail, too, and say why
        }
        if (m_stop.stop_possible()) {
            if (m_stop.stop_requested()) {
                throw Interrupted();
            }
            continue;
        }
        py::gil_scoped_acquire const lock;
        if (PyErr_CheckSignals() != 0) {
            throw py::error_already_set();
        }
    }
}

MessageList::Turn::Turn(MessageList& messages, std::stop_token stop,
                        std::function<void()> beforeWait)
    : m_messages(messages) {
    if (messages.m_isReading) {
        throw py::value_error("another thread or scan is reading these messages");
    }
    messages.m_isReading = true;
    messages.m_wait.m_stop = std::move(stop);
    messages.m_wait.m_beforeWait = std::move(beforeWait);
}

Message MessageList::next() {
    Turn turn(*this);
    InputItem item;
    bool isThere = false;
    {
        py::gil_scoped_release const release;
        isThere = turn.next(item);
    }
    if (!isThere) {
        throw py::stop_iteration();
    }
    return {std::move(item.m_source), std::move(item.m_headers), std::move(item.m_problem),
            item.m_exitStatus};
}

void bindMessages(py::module_& module) {
    using Self = Message const&;
    py::class_<Message>(module, "Message", py::is_final(),
                        "The header section of a message, and where it is from.")
        .def(py::init([](py::buffer const& headers, py::str const& source) {
                 return Message{pathOf(source), sectionOf(headers), {}, 0};
             }),
             py::arg("headers"), py::arg("source") = "",
             "headers: a message; its body is not kept. source: what answers are to call it.")
        .def_property_readonly(
            "source", [](Self self) { return fileName(self.m_source); }, "As Answer.source.")
        .def_property_readonly(
            "headers", [](Self self) { return py::bytes(self.m_headers); },
            "Up to and including the empty line; empty when the message could not be read.")
        .def_property_readonly(
            "error", [](Self self) { return textOrNone(self.m_error); },
            "Why it could not be read, or is no message; None for a message.")
        .def_property_readonly(
            "exit_status", [](Self self) { return self.m_exitStatus; },
            "What qvscan would end with: 0 for a message, 65 for what is none, 66 for what cannot\n"
            "be read.")
        .def("__repr__", s_repr)
        .def(
            "__eq__", [](Self self, Self other) { return self == other; }, py::is_operator())
        .def(py::pickle(&s_state, &s_fromState));

    py::class_<MessageList>(module, "Messages", py::is_final(), "The iterator of messages().")
        .def("__iter__", [](py::object const& self) { return self; })
        .def("__next__", &MessageList::next);

    py::class_<FileWalker>(module, "Files", py::is_final(), "The iterator of files().")
        .def("__iter__", [](py::object const& self) { return self; })
        .def("__next__", &s_nextFile);

    module.def("files", &s_files,
               "The files that messages() reads for these paths, in its order: of a folder all\n"
               "that may hold mail, of a Maildir those in cur and new. For sharing an archive.");

    module.def(
        "messages", &s_messages, py::arg("settings") = py::none(),
        "All messages of files, mailboxes (mbox), Maildirs, folders and archives (tar, zip),\n"
        "packed (gzip, bzip2, xz, zstd) or not, in order. PATH:N is message N of a mailbox;\n"
        "'-' is standard input. Bodies are not kept.\n\n"
        "What cannot be read, or is no message, comes as a Message with an error, and the\n"
        "rest follows. settings: as for Scanner; only the limits of a message count.");
}

} // namespace Quorvane::Python

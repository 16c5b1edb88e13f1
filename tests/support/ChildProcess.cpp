// SPDX-License-Identifier: Apache-2.0
#include "support/ChildProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Quorvane::Testing {

namespace {

std::array<int, 2> s_pipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), 0) != 0) {
        throw std::runtime_error("pipe");
    }
    return ends;
}

void s_close(int& descriptor) {
    if (descriptor >= 0) {
        ::close(descriptor);
        descriptor = -1;
    }
}

std::string s_read(int descriptor, std::size_t size) {
    std::string text(size, '\0');
    auto const count = ::read(descriptor, text.data(), text.size());
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return text;
}

std::string s_readLine(int descriptor) {
    std::string line;
    while (line.empty() || line.back() != '\n') {
        auto const next = s_read(descriptor, 1);
        if (next.empty()) {
            break;
        }
        line += next;
    }
    return line;
}

constexpr std::size_t pieceSize = 65536;

} // namespace

ChildProcess::ChildProcess(std::string const& program, std::vector<std::string> const& arguments) {
    std::signal(SIGPIPE, SIG_IGN);
    auto const in = s_pipe();
    auto const out = s_pipe();
    auto const err = s_pipe();
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (auto& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    m_child = ::fork();
    if (m_child == 0) {
        ::dup2(in[0], STDIN_FILENO);
        ::dup2(out[1], STDOUT_FILENO);
        ::dup2(err[1], STDERR_FILENO);
        for (int const end : {in[0], in[1], out[0], out[1], err[0], err[1]}) {
            ::close(end);
        }
        ::execv(pointers.front(), pointers.data());
        ::_exit(127);
    }
    ::close(in[0]);
    ::close(out[1]);
    ::close(err[1]);
    m_input = in[1];
    m_output = out[0];
    m_errors = err[0];
}

ChildProcess::~ChildProcess() {
    if (m_child > 0) {
        ::kill(m_child, SIGKILL);
        wait();
    }
    s_close(m_input);
    s_close(m_output);
    s_close(m_errors);
}

void ChildProcess::write(std::string const& text) const {
    for (std::size_t done = 0; done < text.size();) {
        auto const count = ::write(m_input, text.data() + done, text.size() - done);
        if (count <= 0) {
            throw std::runtime_error("the program does not read");
        }
        done += static_cast<std::size_t>(count);
    }
}

void ChildProcess::closeInput() {
    s_close(m_input);
}

std::string ChildProcess::readLine() const {
    return s_readLine(m_output);
}

std::string ChildProcess::readErrorLine() const {
    return s_readLine(m_errors);
}

std::string ChildProcess::readSome() const {
    return s_read(m_output, pieceSize);
}

std::string ChildProcess::readAll() const {
    std::string text;
    for (auto piece = readSome(); !piece.empty(); piece = readSome()) {
        text += piece;
    }
    return text;
}

std::string ChildProcess::readErrors() const {
    std::string text;
    for (auto piece = s_read(m_errors, pieceSize); !piece.empty();
         piece = s_read(m_errors, pieceSize)) {
        text += piece;
    }
    return text;
}

void ChildProcess::closeOutput() {
    s_close(m_output);
}

void ChildProcess::signal(int number) const {
    ::kill(m_child, number);
}

int ChildProcess::wait() {
    int status = 0;
    rusage used{};
    while (::wait4(m_child, &status, 0, &used) < 0 && errno == EINTR) {
    }
    m_child = -1;
    s_close(m_input);
    m_peakKilobytes = used.ru_maxrss;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace Quorvane::Testing

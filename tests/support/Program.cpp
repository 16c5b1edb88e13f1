// SPDX-License-Identifier: Apache-2.0
#include "support/Program.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Quorvane::Testing {

namespace {

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) {
            throw std::runtime_error("pipe");
        }
        m_read = ends[0];
        m_write = ends[1];
    }
    int m_read = -1;
    int m_write = -1;
};

std::string s_readAll(int descriptor) {
    std::string text;
    std::array<char, 65536> buffer{};
    for (;;) {
        auto const count = ::read(descriptor, buffer.data(), buffer.size());
        if (count <= 0) {
            break;
        }
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    ::close(descriptor);
    return text;
}

void s_writeAll(int descriptor, std::string const& text) {
    for (std::size_t done = 0; done < text.size();) {
        auto const count = ::write(descriptor, text.data() + done, text.size() - done);
        if (count <= 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    ::close(descriptor);
}

[[noreturn]] void s_become(std::vector<char*>& arguments, Pipe const& in, Pipe const& out,
                           Pipe const& err) {
    ::dup2(in.m_read, STDIN_FILENO);
    ::dup2(out.m_write, STDOUT_FILENO);
    ::dup2(err.m_write, STDERR_FILENO);
    for (int const end :
         {in.m_read, in.m_write, out.m_read, out.m_write, err.m_read, err.m_write}) {
        ::close(end);
    }
    ::unsetenv("NO_COLOR");
    ::execv(arguments.front(), arguments.data());
    ::_exit(127);
}

int s_status(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace

ProgramResult runProgram(std::string const& program, std::vector<std::string> const& arguments,
                         std::string const& input) {
    // The program may end before it has read everything.
    std::signal(SIGPIPE, SIG_IGN);
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (auto& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);

    Pipe const in;
    Pipe const out;
    Pipe const err;
    pid_t const child = ::fork();
    if (child == 0) {
        s_become(pointers, in, out, err);
    }
    ::close(in.m_read);
    ::close(out.m_write);
    ::close(err.m_write);
    ProgramResult result;
    std::thread writer([&] { s_writeAll(in.m_write, input); });
    std::thread reader([&] { result.m_errors = s_readAll(err.m_read); });
    result.m_output = s_readAll(out.m_read);
    reader.join();
    writer.join();
    result.m_status = s_status(child);
    return result;
}

} // namespace Quorvane::Testing

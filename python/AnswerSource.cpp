// SPDX-License-Identifier: Apache-2.0
#include "python/AnswerSource.h"

#include "apps/input/OrderedPool.h"
#include "platform/SignalsBlocked.h"
#include "python/ResultQueue.h"

#include <exception>
#include <new>
#include <stop_token>
#include <utility>
#include <vector>

namespace Quorvane::Python {

namespace {

namespace py = pybind11;

// The messages of an iterator of Python. What it throws ends them, and comes out later.
class TakenMessages {
  public:
    explicit TakenMessages(py::object messages) : m_messages(std::move(messages)) {}

    // False at the end.
    bool take(InputItem& item) {
        if (m_isAtEnd) {
            return false;
        }
        try {
            auto const next = py::reinterpret_steal<py::object>(PyIter_Next(m_messages.ptr()));
            if (!next) {
                m_isAtEnd = true;
                return PyErr_Occurred() == nullptr ? false : throw py::error_already_set();
            }
            item = itemOf(messageOf(next));
            return true;
        } catch (...) {
            m_thrown = std::current_exception();
            m_isAtEnd = true;
            return false;
        }
    }

    // What ended them, once.
    void rethrow() {
        if (auto const thrown = std::exchange(m_thrown, nullptr)) {
            std::rethrow_exception(thrown);
        }
    }

  private:
    static InputItem itemOf(Message message) {
        InputItem item;
        item.m_source = std::move(message.m_source);
        item.m_headers = std::move(message.m_headers);
        item.m_problem = std::move(message.m_error);
        return item;
    }

    py::object m_messages;
    std::exception_ptr m_thrown;
    bool m_isAtEnd = false;
};

class ByCaller : public AnswerSource {
  public:
    ByCaller(ScannerPointer scanner, py::object messages)
        : m_scanner(std::move(scanner)), m_messages(std::move(messages)) {}

    std::optional<Answer> next() override {
        InputItem item;
        if (!m_messages.take(item)) {
            m_messages.rethrow();
            return std::nullopt;
        }
        Judgement judgement;
        {
            py::gil_scoped_release const release;
            m_scanner->judge(item, judgement);
        }
        return m_scanner->answer(std::move(judgement));
    }

  private:
    ScannerPointer m_scanner;
    TakenMessages m_messages;
};

// What both kinds with threads share: judging, and the way of the results.
class ByPool : public AnswerSource {
  public:
    ByPool(ScannerPointer scanner, unsigned int threads)
        : m_scanner(std::move(scanner)), m_atPlaces(OrderedPool::places(threads)) {}

  protected:
    // For threads of the pool.
    OrderedPool::Roles roles(OrderedPool::Source source) {
        return {
            [this](InputItem const& item, std::size_t place) { judge(item, m_atPlaces[place]); },
            [this](InputItem const& /*item*/, std::size_t place) {
                return m_results.add(m_atPlaces[place]);
            },
            std::move(source),
            [this](bool isEnd, std::exception_ptr const& thrown) {
                if (isEnd) {
                    m_results.end(thrown);
                } else {
                    m_results.publish();
                }
            }};
    }

    // The next one, or null at the end; lets the interpreter handle signals meanwhile.
    Result const* nextResult() {
        while (!m_results.isReady() && !waitForResults()) {
            if (PyErr_CheckSignals() != 0) {
                throw py::error_already_set();
            }
        }
        return m_results.take();
    }

    // Copies, so that the memory of the result goes back to the threads.
    std::optional<Answer> answerOf(Result const* result) const {
        if (result == nullptr) {
            return std::nullopt;
        }
        if (result->m_thrown) {
            std::rethrow_exception(result->m_thrown);
        }
        return m_scanner->answer(result->m_judgement);
    }

    void stop(std::unique_ptr<OrderedPool>& pool) {
        m_results.stop();
        m_stop.request_stop();
        py::gil_scoped_release const release;
        pool.reset();
    }

    std::stop_source m_stop;
    ResultQueue m_results;

  private:
    // Of running out of memory the pool makes a problem of the message.
    void judge(InputItem const& item, Result& result) const {
        result.m_thrown = nullptr;
        try {
            m_scanner->judge(item, result.m_judgement);
        } catch (std::bad_alloc const&) {
            throw;
        } catch (...) {
            result.m_thrown = std::current_exception();
        }
    }

    bool waitForResults() {
        constexpr std::chrono::milliseconds longestWait(100); // the interpreter only notes signals
        py::gil_scoped_release const release;
        return m_results.waitFor(longestWait);
    }

    ScannerPointer m_scanner;
    std::vector<Result> m_atPlaces;
};

class FedByCaller : public ByPool {
  public:
    FedByCaller(ScannerPointer scanner, py::object messages, unsigned int threads)
        : ByPool(std::move(scanner), threads), m_messages(std::move(messages)) {
        SignalsBlocked const blocked; // the interpreter handles them
        m_pool = std::make_unique<OrderedPool>(threads, roles({}), m_stop.get_token());
    }
    ~FedByCaller() override { stop(m_pool); } // NOLINT(bugprone-exception-escape)

    std::optional<Answer> next() override {
        readAhead();
        if (m_underWay == 0) {
            m_messages.rethrow();
            return std::nullopt;
        }
        auto const* const result = nextResult();
        --m_underWay;
        return answerOf(result);
    }

  private:
    static constexpr std::size_t submittedTogether = 16;
    static constexpr std::size_t mostUnderWay = 512; // fewer than may wait

    // While answers wait, a few messages for each that is given away; otherwise until one comes or
    // enough are under way.
    void readAhead() {
        constexpr int few = 2;
        InputItem item;
        for (int i = 0; m_underWay < mostUnderWay && (i < few || !m_results.isReady()) &&
                        m_messages.take(item);
             ++i) {
            add(std::move(item));
        }
        if (!m_toSubmit.empty() && !m_results.isReady()) {
            submit();
        }
    }

    // A message waits for others, so that locks cost little, unless the threads have nothing to do.
    void add(InputItem item) {
        bool const isIdle = m_underWay == 0;
        m_toSubmit.push_back(std::move(item));
        ++m_underWay;
        if (isIdle || m_toSubmit.size() >= submittedTogether) {
            submit();
        }
    }

    // Messages wait for room here, where answers may be given away meanwhile, unless all answers
    // that are to come are theirs.
    void submit() {
        py::gil_scoped_release const release;
        if (m_underWay == m_toSubmit.size()) {
            m_pool->submit(m_toSubmit);
        } else {
            m_pool->submitThoseWithRoom(m_toSubmit);
        }
    }

    TakenMessages m_messages;
    std::size_t m_underWay = 0; // taken from the iterator, answers not given away
    std::vector<InputItem> m_toSubmit;
    std::unique_ptr<OrderedPool> m_pool;
};

class ReadByPool : public ByPool {
  public:
    ReadByPool(ScannerPointer scanner, MessageList& messages, py::object owner,
               unsigned int threads)
        : ByPool(std::move(scanner), threads), m_owner(std::move(owner)),
          m_messages(messages, m_stop.get_token(), [this] { m_reading->sourceWaits(); }) {
        SignalsBlocked const blocked;
        m_pool = std::make_unique<OrderedPool>(threads,
                                               roles([this](InputItem& item, OrderedPool& pool) {
                                                   m_reading = &pool;
                                                   return m_messages.next(item);
                                               }),
                                               m_stop.get_token());
    }
    ~ReadByPool() override { stop(m_pool); } // NOLINT(bugprone-exception-escape)

    std::optional<Answer> next() override { return answerOf(nextResult()); }

  private:
    py::object m_owner;
    MessageList::Turn m_messages;
    OrderedPool* m_reading = nullptr; // m_pool, which may have threads before it is set
    std::unique_ptr<OrderedPool> m_pool;
};

} // namespace

std::unique_ptr<AnswerSource> judgedByCaller(ScannerPointer scanner, py::object messages) {
    return std::make_unique<ByCaller>(std::move(scanner), std::move(messages));
}

std::unique_ptr<AnswerSource> judgedByThreads(ScannerPointer scanner, py::object messages,
                                              unsigned int threads) {
    return std::make_unique<FedByCaller>(std::move(scanner), std::move(messages), threads);
}

std::unique_ptr<AnswerSource> readByThreads(ScannerPointer scanner, MessageList& messages,
                                            py::object owner, unsigned int threads) {
    return std::make_unique<ReadByPool>(std::move(scanner), messages, std::move(owner), threads);
}

} // namespace Quorvane::Python

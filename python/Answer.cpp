// SPDX-License-Identifier: Apache-2.0
#include "python/Answer.h"

#include "apps/story/ResultText.h"
#include "apps/story/RuleNaming.h"
#include "apps/story/VerdictStory.h"
#include "python/Argument.h"

#include <pybind11/stl.h>
#include <string_view>
#include <tuple>
#include <utility>

namespace Quorvane::Python {

namespace {

namespace py = pybind11;

Rules::RuleName const& s_rule(Judgement const& judgement) {
    static Rules::RuleName const none;
    return judgement.m_rule == nullptr ? none : *judgement.m_rule;
}

py::object s_confidence(Answer const& answer) {
    return answer.m_node == 0 ? py::none() : py::object(py::float_(answer.m_confidence));
}

py::tuple s_addresses(Answer const& answer) {
    py::list addresses;
    for (auto const& address : answer.m_addresses) {
        addresses.append(textOf(address));
    }
    return py::tuple(addresses);
}

std::string s_repr(Answer const& answer) {
    auto const text = [](py::object const& value) { return py::repr(value).cast<std::string>(); };
    auto const start = "Answer(source=" + text(fileName(answer.m_source));
    if (!answer.m_error.empty()) {
        return start + ", error=" + text(textOf(answer.m_error)) + ")";
    }
    return start + ", verdict='" + answer.m_verdict +
           "', confidence=" + text(s_confidence(answer)) +
           ", node=" + std::to_string(answer.m_node) +
           (s_rule(answer).m_name.empty() ? "" : ", name=" + text(textOf(s_rule(answer).m_name))) +
           ")";
}

py::tuple s_state(Answer const& a) {
    return py::make_tuple(py::bytes(a.m_source), a.m_verdict, a.m_isJudged, a.m_node,
                          py::bytes(s_rule(a).m_name), py::bytes(s_rule(a).m_sentence),
                          a.m_confidence, a.m_support, a.m_adjustment, s_addresses(a),
                          py::bytes(a.m_reasons), py::bytes(a.m_error));
}

Answer s_fromState(py::tuple const& state) {
    constexpr std::size_t fields = 12;
    if (state.size() != fields) {
        throw py::value_error("this is not the state of an Answer");
    }
    auto const text = [&state](std::size_t field) { return state[field].cast<std::string>(); };
    auto const number = [&state](std::size_t field) { return state[field].cast<double>(); };
    auto const rule = std::make_shared<Rules::RuleName const>(Rules::RuleName{text(4), text(5)});
    return {{text(0), text(1), state[2].cast<bool>(), state[3].cast<std::int32_t>(), rule.get(),
             number(6), number(7), number(8), state[9].cast<std::vector<std::string>>(), text(10),
             text(11)},
            rule};
}

} // namespace

bool Answer::operator==(Answer const& other) const {
    auto const values = [](Answer const& a) {
        return std::tie(a.m_source, a.m_verdict, a.m_isJudged, a.m_node, s_rule(a).m_name,
                        s_rule(a).m_sentence, a.m_confidence, a.m_support, a.m_adjustment,
                        a.m_addresses, a.m_reasons, a.m_error);
    };
    return values(*this) == values(other);
}

void takeRecord(Judgement& judgement, std::string const& source, ScanRecord const& record,
                Rules::RuleNames const& names) {
    auto const& verdict = record.verdict;
    auto const addresses = judgedAddresses(verdict);
    judgement.m_source = source;
    judgement.m_verdict = verdictName(verdict);
    judgement.m_isJudged = record.isJudged();
    judgement.m_node = verdict.node;
    judgement.m_rule = deciderName(names, verdict);
    judgement.m_confidence = verdict.confidence;
    judgement.m_support = verdict.support;
    judgement.m_adjustment = verdict.adjust;
    judgement.m_addresses.assign(addresses.begin(), addresses.end());
    judgement.m_reasons.assign(record.answer.getReasons());
    judgement.m_error.assign(record.failure ? *record.failure : std::string_view());
}

void takeProblem(Judgement& judgement, std::string const& source, std::string const& problem) {
    judgement = Judgement();
    judgement.m_source = source;
    judgement.m_error = problem;
}

void bindAnswer(py::module_& module) {
    using Self = Answer const&;
    py::class_<Answer>(module, "Answer", py::is_final(), "What the rules say of one message.")
        .def_property_readonly(
            "source", [](Self self) { return fileName(self.m_source); },
            "Where the message is from: a path, PATH:N for the Nth message of a mailbox,\n"
            "ARCHIVE/FILE in an archive; empty for bytes.")
        .def_property_readonly(
            "verdict", [](Self self) { return self.m_verdict; }, "'spam', 'ham' or 'none'.")
        .def_property_readonly(
            "is_judged", [](Self self) { return self.m_isJudged; },
            "Whether the rules were asked. Without a public address in the trail, for example,\n"
            "they are not; Scanner.explain tells why.")
        .def_property_readonly(
            "node", [](Self self) { return self.m_node; },
            "The number of the tree node or elite rule that decided; 0: none.")
        .def_property_readonly(
            "name", [](Self self) { return textOrNone(s_rule(self).m_name); },
            "The name of what decided; None when it has no name.")
        .def_property_readonly(
            "sentence", [](Self self) { return textOrNone(s_rule(self).m_sentence); },
            "Why the rule is there; None when its author does not say.")
        .def_property_readonly("confidence", s_confidence,
                               "The probability of spam, 0 to 1; None when no rule decided.")
        .def_property_readonly(
            "support", [](Self self) { return self.m_support; },
            "Percent of the training mail that the deciding rule rests on.")
        .def_property_readonly(
            "adjustment", [](Self self) { return self.m_adjustment; },
            "What adjusting rules added to the confidence.")
        .def_property_readonly("addresses", s_addresses,
                               "The public addresses that the verdict is about, the newest first.")
        .def_property_readonly(
            "reasons", [](Self self) { return textOf(self.m_reasons); },
            "The line of reasons that the library writes.")
        .def_property_readonly(
            "error", [](Self self) { return textOrNone(self.m_error); },
            "Why the message could not be read or judged; None when it could.")
        .def("__repr__", s_repr)
        .def(
            "__eq__", [](Self self, Self other) { return self == other; }, py::is_operator())
        .def(py::pickle(&s_state, &s_fromState));
}

} // namespace Quorvane::Python

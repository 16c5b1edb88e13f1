// SPDX-License-Identifier: Apache-2.0
//
// The engine's construction, its publication, and the order of the stages of a scan. Each stage is
// a file beside this one:
//
//   getFields      HeaderFields.cpp   addresses, Message-ID domain, the hops to judge
//   parseFields    ReceivedChain.cpp  the hops, classified; HopAnalysis.cpp looks into one
//   getAttributes  Attributes.cpp     the vector of 38 attributes
//   getResults     Verdict.cpp        EliteNodes.cpp and DecisionTree.cpp turn it into the answer
#include "adapter/DeepHeaderAdapter.h"
#include "include2/DeepHeaderException.h"
#include "platform/File.h"
#include "scanner/records/RecordAccess.h"

#include <memory>

namespace Quorvane {

template class RefCounted<DeepHeaderAdapter>;
template class Ref<DeepHeaderAdapter>;

namespace {

// Locations that DeepHeaderExceptions report; programs match on them, so never renumber.
constexpr char adapterFile[] = "Adapter";
constexpr unsigned int rulesLine = 175;
constexpr unsigned int knownFailureLine = 771;
constexpr unsigned int otherFailureLine = 775;

[[noreturn]] void s_fail(unsigned int line, std::string const& text) {
    DeepHeaderException exception(adapterFile, line);
    exception.stringParameter(text);
    throw exception;
}

void s_requireLoaded(int loadResult) {
    if (loadResult != 0) {
        s_fail(rulesLine, "Error loading the deep header rules");
    }
}

// Each attribute before a scan.
constexpr AttributeVector startValues = [] {
    AttributeVector values{};
    for (auto const& facts : attributeTable) {
        values[facts.m_index] = facts.m_start;
    }
    return values;
}();

RefDeepHeaderAdapter* s_adapterInstance = nullptr;

} // namespace

// --- construction -------------------------------------------------------------------------------

// An engine without elite rules is a valid one. An installation puts another set in force in one
// step; when that happened between the two files, both are read again.
DeepHeaderAdapter::DeepHeaderAdapter() : m_eliteHeader{}, m_dtNodes{} {
    auto const realFolder = [] { return File::realFolder(ruleDirectory, treeFileName); };
    std::string folder;
    int result = 0;
    do {
        folder = realFolder();
        m_eliteHeader = EliteFileHeader{};
        m_eliteNodes.clear();
        loadEliteNodes();
        result = loadDTRules();
    } while (realFolder() != folder);
    s_requireLoaded(result);
}

DeepHeaderAdapter::DeepHeaderAdapter(std::istream& tree, std::istream* elite)
    : m_eliteHeader{}, m_dtNodes{} {
    if (elite != nullptr) {
        loadEliteNodes(*elite);
    }
    s_requireLoaded(loadDTRules(tree));
}

DeepHeaderAdapter::~DeepHeaderAdapter() = default;

DeepHeaderAdapter::MsgProperties::MsgProperties() : attributes(startValues) {}

// --- publication --------------------------------------------------------------------------------

RefDeepHeaderAdapter::RefDeepHeaderAdapter() = default;

RefDeepHeaderAdapter::RefDeepHeaderAdapter(DeepHeaderAdapter* adapter)
    : Ref(new RefCounted<DeepHeaderAdapter>(adapter, false)) {}

RefDeepHeaderAdapter::~RefDeepHeaderAdapter() = default;

RefDeepHeaderAdapter RefDeepHeaderAdapter::instance(DeepHeaderAdapter* adapter) {
    if (adapter == nullptr) {
        return s_adapterInstance == nullptr ? RefDeepHeaderAdapter() : *s_adapterInstance;
    }
    // All that may fail comes first.
    std::unique_ptr<DeepHeaderAdapter> owner(adapter);
    auto published = std::make_unique<RefDeepHeaderAdapter>(adapter);
    static_cast<void>(owner.release());
    RefDeepHeaderAdapter handle(*published);
    delete s_adapterInstance;
    s_adapterInstance = published.release();
    return handle;
}

// --- the scan -----------------------------------------------------------------------------------

DeepHeaderAnswer DeepHeaderAdapter::scanMessage(DeepHeaderQuery& query) {
    MsgProperties props;
    return scanMessage(query, props);
}

DeepHeaderAnswer DeepHeaderAdapter::scanMessage(DeepHeaderQuery& query, MsgProperties& props) {
    DeepHeaderAnswer answer;
    try {
        getFields(props, query);
        if (parseFields(props)) {
            getAttributes(props);
            getResults(RecordAccess::record(answer), query, props);
        }
    } catch (Exception const& exception) {
        s_fail(knownFailureLine, exception.asString());
    } catch (...) {
        s_fail(otherFailureLine, "Error deep header scanning ");
    }
    return answer;
}

} // namespace Quorvane

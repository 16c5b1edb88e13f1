// SPDX-License-Identifier: Apache-2.0
//
// ScanRecord: what one scan did and found, for programs that show, count or test it. The engine
// fills it while it judges (DeepHeaderEngine.h), so that a program need not compute anything a
// second time.
//
// Plain data: copy, move and keep it as long as you like; nothing in it points into the engine or
// the message. Texts are bytes of the message and hostile: make them safe for where they are shown.
// Attribute numbers and value codes are those of docs/attributes.md, rule numbers those of
// docs/rule-files.md.
#pragma once

#include "DeepHeaderAnswer.h"
#include "platform/EmailAddress.h"
#include "platform/IPAddress.h"
#include "platform/Resolver.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane {

// How much of a scan is recorded. Each level holds what the levels before it hold.
enum class RecordDepth : std::uint8_t {
    result,       // the verdict, the attributes, the message's addresses and counts
    steps,        // each hop, look-up, elite rule and tree node, too
    alternatives, // and what would have led to another verdict, which takes further judgements
};

// --- the trail ----------------------------------------------------------------------------------

// What the scan made of a hop.
enum class HopRole : std::uint8_t {
    unreadable,      // reading it failed, and the scan with it
    internal,        // one of the site's own newest relays: skipped
    trusted,         // a trusted relay: skipped
    authenticated,   // an authenticated submission (RFC 4954): skipped
    trustedPartner,  // a trusted relay that filters already: the walk ends before it
    ipv6End,         // an IPv6 relay: the walk ends before it
    scoredEnd,       // a relay of good reputation: the walk ends before it
    listed,          // taken, but the scan failed before it was analysed
    privateAddress,  // taken: a private address
    noAddress,       // taken: no address
    firstPublic,     // taken and judged: the first public hop
    analysed,        // taken and judged: a further hop of the first run of public hops
    publicNotJudged, // taken: public, but after the first run
    notLookedAt,     // after the end of the walk
};

struct RecordedHop {
    HopRole role = HopRole::unreadable;
    // The hop that the host is about to add.
    bool isCurrent = false;
    // A relay on the site's side recorded it. A sender could have invented any other.
    bool isVouched = false;
    // Of Role scoredEnd.
    std::uint32_t score = 0;
    // The fields of MsgReceived as the scan left them; of a hop that was not looked at, as they
    // read.
    std::string from;
    std::string reverseName;
    std::string by;
    IPAddress address; // null: none
    bool privateIP = true;
    bool authenticated = false;
    std::string receiveTime;
    std::int32_t isForged = -1; // -1: nobody asked

    // It is one of the hops that were judged as a chain.
    bool isTaken() const { return role >= HopRole::listed && role <= HopRole::publicNotJudged; }
};

// The names of one judged hop, classified and compared. 3 means that a field was never analysed.
struct HopAnalysis {
    std::string helo;        // announced name, lower-cased, without its brackets
    std::string ip;          // address text; empty when the hop has none
    std::string reverseName; // lower-cased
    std::int32_t hasIP = 3;
    std::int32_t heloIsDomain = 3;
    std::int32_t heloIsIP = 3;
    std::int32_t heloDynamic = 3;
    std::int32_t heloEqualsIP = 0; // meaningful only for an address literal: 2 equal, 0 not
    std::int32_t reverseDynamic = 3;
    std::int32_t reverseIsDomain = 3;
    std::int32_t isForged = 3; // first hop only
    std::int32_t heloMatchesReverse = 3;
    std::int32_t fromDomainMatchesHelo = 3;
    std::int32_t fromDomainMatchesReverse = 3;
    std::int32_t envFromDomainMatches = 3;
    std::int32_t fromDomainMatchesBoth = 3;
};

// --- look-ups -----------------------------------------------------------------------------------

struct RecordedLookup {
    enum class Question : std::uint8_t {
        reverseName,    // does the reverse name of the first public hop have its address?
        announcedName,  // does the name that this hop announced exist?
        envelopeDomain, // does the domain of the envelope sender exist?
    };
    Question question = Question::reverseName;
    std::string name;
    LookupResult result = LookupResult::notAsked;
};

// --- rules --------------------------------------------------------------------------------------

// A test of a rule on one attribute. In an elite rule 0 asks for the value, 1 for another one, and
// nothing passes any other test; in the tree any test but 0 asks for another value.
struct AttributeTest {
    std::int32_t attribute = 0;
    std::int32_t test = 0;
    std::int32_t value = 0;
};

enum class RuleOutcome : std::uint8_t {
    notReached,  // the run ended before it
    level,       // its level is above the settings' maximum
    noMatch,     // a test failed
    unknownType, // neither adjusting nor deciding: never fires
    support,     // it rests on less training mail than the settings ask for
    adjusted,    // fired and adjusted the confidence
    passedOver,  // fired, but the rule chosen before it stayed
    replaced,    // was chosen until a later rule replaced it
    chosen,      // the deciding rule of this run
};

// One elite rule, in the order of the engine's list.
struct RecordedRule {
    std::int32_t code = 0;
    std::int32_t type = 0; // 1 adjusting, 2 deciding
    std::int32_t level = 0;
    double weight = 0;
    double support = 0; // percent of the training mail
    std::vector<AttributeTest> tests;
    RuleOutcome outcome = RuleOutcome::notReached;
    std::size_t failedTest = 0; // of outcome noMatch: its place in `tests`
    std::size_t replacedBy = 0; // of outcome replaced: the place of that rule in the list

    bool hasFired() const { return outcome >= RuleOutcome::adjusted; }
};

// What a run over the elite rules adds up to.
struct EliteResult {
    double adjust = 0.0;     // sum of the weights of the adjusting rules that fired
    double confidence = 0.0; // of the chosen deciding rule
    double support = 0.0;    // of the chosen deciding rule
    std::int32_t code = 0;   // of the chosen deciding rule; 0: none chosen
    std::string reasons;     // one character for each adjusting rule that fired
};

// A node of the tree that the walk visited.
struct RecordedNode {
    std::int32_t number = 0;
    AttributeTest test; // admitted the message; without meaning on the root
    bool isLeaf = false;
    double confidence = 0;                // probability of spam
    double support = 0;                   // percent of the training mail
    std::array<std::int32_t, 3> counts{}; // training messages: all, spam, ham
};

enum class TreeUse : std::uint8_t {
    notReached,   // the scan ended before the rules
    eliteDecided, // an elite rule decided before it
    leftOut,      // the elite file leaves the tree out
    switchedOff,  // the spam threshold is so high that the tree is not asked
    walked,
};

enum class WalkEnd : std::uint8_t {
    notWalked,
    leaf,
    sureEnough, // the node is sure enough of spam, and the settings let the walk stop there
    rareChild,  // the branch that fits rests on too little training mail
    noBranch,   // no branch fits
    badNode,    // the rules name a node or an attribute that does not exist
    tooLong,    // the rules lead in circles
};

struct RecordedWalk {
    TreeUse use = TreeUse::notReached;
    std::vector<RecordedNode> path; // the root first
    WalkEnd end = WalkEnd::notWalked;
    std::int32_t result = -1; // the node that the walk reached; -1: none
};

// --- the verdict --------------------------------------------------------------------------------

enum class Decision : std::uint8_t {
    notReached, // no public hop, or the scan failed
    none,       // the rules were asked and none decided
    elite,
    tree,
};

// The verdict in full precision. `answer` of the record is what postQuery returns.
struct RecordedVerdict {
    Decision decision = Decision::notReached;
    std::int32_t node = 0; // tree node or elite code; 0: none
    double confidence = -1.0;
    double support = 0.0;
    double adjust = 0.0;
    std::string adjustReason;
    bool isSpam = false;
    bool isHam = false;
    std::string ips;
    // The highest spam threshold at which these rules still say spam, in a walk to the leaf; minus
    // infinity: at none.
    double spamScore = -std::numeric_limits<double>::infinity();
};

// The fewest attributes that would have had to differ for the other verdict. Tried on the engine.
struct Alternative {
    struct Change {
        std::int32_t attribute = 0;
        std::int32_t value = 0; // that it would need
    };
    bool isSpam = false;         // else ham
    std::int32_t node = 0;       // what would decide
    std::vector<Change> changes; // at most 3: more would be another message
};

// --- the whole ----------------------------------------------------------------------------------

struct ScanRecord {
    DeepHeaderAnswer answer;
    RecordedVerdict verdict;
    // Why the scan failed: the text of the Exception. The answer is then the default one, and the
    // rest of the record shows how far the scan came.
    std::optional<std::string> failure;
    // Attributes were judged, without a message.
    bool isVector = false;

    std::string messageIdDomain; // lower-cased
    EmailAddress headerFrom;
    EmailAddress envelopeFrom;
    EmailAddress recipient;
    std::array<HopAnalysis, 3> receivers; // the judged hops, as the attributes see them
    std::int32_t scoredHopFound = 0;      // 1: a relay's reputation ended the walk
    std::string scoredHopIP;
    std::int32_t scoredHopScore = 0;
    std::int32_t hopCount = 0;
    std::int32_t maxPrivateRun = 0; // longest run of private hops
    std::int32_t publicRun = 0;     // length of the last run of public hops
    std::int32_t noAddressHops = 0;
    std::array<std::int32_t, 38> attributes{};

    // From depth `steps` on.
    std::vector<RecordedHop> trail; // all hops, newest first
    std::vector<RecordedLookup> lookups;
    std::vector<RecordedRule> rules; // empty when the engine holds none or the scan ended before
    EliteResult elite;
    RecordedWalk tree;
    // From depth `alternatives` on: at most one for spam and one for ham.
    std::vector<Alternative> alternatives;

    // The scan reached the rules: the attributes are complete.
    bool isJudged() const { return verdict.decision != Decision::notReached; }
};

} // namespace Quorvane

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

// One hop of the trail: a Received header, or the one that the host is about to add.
struct RecordedHop {
    HopRole role = HopRole::unreadable; // what the scan made of it
    // The hop that the host is about to add.
    bool isCurrent = false;
    // A relay on the site's side recorded it. A sender could have invented any other.
    bool isVouched = false;
    // Of Role scoredEnd.
    std::uint32_t score = 0;
    // This and what follows are the fields of MsgReceived as the scan left them; of a hop that was
    // not looked at, as they read. Here: the name that the sending host announced.
    std::string from;
    std::string reverseName;    // that the receiving host recorded; empty: none
    std::string by;             // the receiving host
    IPAddress address;          // null: none
    bool privateIP = true;      // or no address
    bool authenticated = false; // the header says so, of a public client
    std::string receiveTime;    // lower-cased
    std::int32_t isForged = -1; // -1: nobody asked

    // It is one of the hops that were judged as a chain.
    bool isTaken() const { return role >= HopRole::listed && role <= HopRole::publicNotJudged; }
};

// The names of one judged hop, classified and compared: 0 no, 1 yes, 2 unknown (of heloIsIP and
// heloDynamic: an address), 3 never analysed, 8 the question does not arise.
struct HopAnalysis {
    std::string helo;                    // announced name, lower-cased, without its brackets
    std::string ip;                      // address text; empty when the hop has none
    std::string reverseName;             // lower-cased
    std::int32_t hasIP = 3;              // the header names an address
    std::int32_t heloIsDomain = 3;       // or an address
    std::int32_t heloIsIP = 3;           // 2: it is
    std::int32_t heloDynamic = 3;        // by the patterns of dynamic names
    std::int32_t heloEqualsIP = 0;       // meaningful only for an address literal: 2 equal, 0 not
    std::int32_t reverseDynamic = 3;     // by the patterns of dynamic names
    std::int32_t reverseIsDomain = 3;    // it has a dot
    std::int32_t isForged = 3;           // first hop only
    std::int32_t heloMatchesReverse = 3; // both names are related
    std::int32_t fromDomainMatchesHelo = 3;    // the author's domain to the announced name
    std::int32_t fromDomainMatchesReverse = 3; // the author's domain to the reverse name
    std::int32_t envFromDomainMatches = 3;     // the envelope sender's domain to both names
    std::int32_t fromDomainMatchesBoth = 3;    // the author's domain to both names
};

// --- look-ups -----------------------------------------------------------------------------------

// A question to DNS about the message.
struct RecordedLookup {
    // What DNS was asked for.
    enum class Question : std::uint8_t {
        reverseName,    // does the reverse name of the first public hop have its address?
        announcedName,  // does the name that this hop announced exist?
        envelopeDomain, // does the domain of the envelope sender exist?
        relayScore,     // what does a DNS list say of a relay? Asked by the host, before the scan.
    };
    Question question = Question::reverseName;    // what for
    std::string name;                             // that was asked about
    LookupResult result = LookupResult::notAsked; // how it ended
};

// --- rules --------------------------------------------------------------------------------------

// A test of a rule on one attribute. In an elite rule 0 asks for the value, 1 for another one, and
// nothing passes any other test; in the tree any test but 0 asks for another value.
struct AttributeTest {
    std::int32_t attribute = 0; // number, 0 to 37 unless the rules are damaged
    std::int32_t test = 0;      // as above
    std::int32_t value = 0;     // that the attribute is compared with
};

// What became of an elite rule in a run.
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
    std::int32_t code = 0;                         // its number, or the letter of an adjusting rule
    std::int32_t type = 0;                         // 1 adjusting, 2 deciding
    std::int32_t level = 0;                        // compared with maxEliteLevel of the settings
    double weight = 0;                             // probability of spam, or what is added to it
    double support = 0;                            // percent of the training mail
    std::vector<AttributeTest> tests;              // all must hold
    RuleOutcome outcome = RuleOutcome::notReached; // what became of it
    std::size_t failedTest = 0;                    // of outcome noMatch: its place in `tests`
    std::size_t replacedBy = 0; // of outcome replaced: the place of that rule in the list

    // It matched and had an effect, or could have had one.
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
    std::int32_t number = 0;              // in the rule file; the root is 2
    AttributeTest test;                   // admitted the message; without meaning on the root
    bool isLeaf = false;                  // the walk ends here
    double confidence = 0;                // probability of spam
    double support = 0;                   // percent of the training mail
    std::array<std::int32_t, 3> counts{}; // training messages: all, spam, ham
};

// Whether the tree was asked.
enum class TreeUse : std::uint8_t {
    notReached,   // the scan ended before the rules
    eliteDecided, // an elite rule decided before it
    leftOut,      // the elite file leaves the tree out
    switchedOff,  // the spam threshold is so high that the tree is not asked
    walked,
};

// Why the walk along the tree ended where it did.
enum class WalkEnd : std::uint8_t {
    notWalked,
    leaf,
    sureEnough, // the node is sure enough of spam, and the settings let the walk stop there
    rareChild,  // the branch that fits rests on too little training mail
    noBranch,   // no branch fits
    badNode,    // the rules name a node or an attribute that does not exist
    tooLong,    // the rules lead in circles
};

// The walk along the tree.
struct RecordedWalk {
    TreeUse use = TreeUse::notReached; // whether there was one
    std::vector<RecordedNode> path;    // the root first
    WalkEnd end = WalkEnd::notWalked;  // why it ended
    std::int32_t result = -1;          // the node that the walk reached; -1: none
};

// --- the verdict --------------------------------------------------------------------------------

// Who decided.
enum class Decision : std::uint8_t {
    notReached, // no public hop, or the scan failed
    none,       // the rules were asked and none decided
    elite,
    tree,
};

// The verdict in full precision. `answer` of the record is what postQuery returns.
struct RecordedVerdict {
    Decision decision = Decision::notReached; // who decided
    std::int32_t node = 0;                    // tree node or elite code; 0: none
    double confidence = -1.0; // probability of spam, before the adjustment; -1: none
    double support = 0.0;     // percent of the training mail
    double adjust = 0.0;      // sum of the weights of the adjusting rules that fired
    std::string adjustReason; // one character for each of them
    bool isSpam = false;      // at the thresholds of the settings
    bool isHam = false;       // never together with isSpam
    std::string ips;          // as DeepHeaderAnswer::getIPs gives them
    // The highest spam threshold at which these rules still say spam, in a walk to the leaf; minus
    // infinity: at none.
    double spamScore = -std::numeric_limits<double>::infinity();
};

// Attributes that would have led to another verdict if they had differed. Tried on the engine.
struct Alternative {
    // One attribute and what it would have had to be.
    struct Change {
        std::int32_t attribute = 0; // number
        std::int32_t value = 0;     // that it would need
    };
    bool isSpam = false; // the other verdict
    bool isHam = false;  // neither: no verdict
    // What would decide, as in RecordedVerdict.
    Decision decision = Decision::none;
    std::int32_t node = 0;       // its number
    std::vector<Change> changes; // at most 3: more would be another message
};

// What one other value of one attribute would have led to.
struct SingleChanges {
    // Those that lead to another verdict, by attribute and value. Of a counter the values that
    // rules name are tried, and one for all others.
    std::vector<Alternative> list;
    // False: the rules name too many values, and a change that is not listed may lead there, too.
    bool areAllTried = false;
};

// --- the whole ----------------------------------------------------------------------------------

struct ScanRecord {
    DeepHeaderAnswer answer; // what postQuery would have returned
    RecordedVerdict verdict; // the same in full precision
    // Why the scan failed: the text of the Exception. The answer is then the default one, and the
    // rest of the record shows how far the scan came.
    std::optional<std::string> failure;
    // Attributes were judged, without a message.
    bool isVector = false;

    std::string messageIdDomain;               // lower-cased
    EmailAddress headerFrom;                   // the author
    EmailAddress envelopeFrom;                 // null for a bounce, or when nobody knows
    EmailAddress recipient;                    // of the envelope, or of the headers
    std::array<HopAnalysis, 3> receivers;      // the judged hops, as the attributes see them
    std::int32_t scoredHopFound = 0;           // 1: a relay's reputation ended the walk
    std::string scoredHopIP;                   // of that relay; empty: none did
    std::int32_t scoredHopScore = 0;           // of that relay
    std::int32_t hopCount = 0;                 // hops that were taken
    std::int32_t maxPrivateRun = 0;            // longest run of private hops
    std::int32_t publicRun = 0;                // length of the last run of public hops
    std::int32_t noAddressHops = 0;            // taken hops whose header names no address
    std::array<std::int32_t, 38> attributes{}; // by number; complete if isJudged

    // From depth `steps` on.
    std::vector<RecordedHop> trail;      // all hops, newest first
    std::vector<RecordedLookup> lookups; // scores of relays first
    std::vector<RecordedRule> rules; // empty when the engine holds none or the scan ended before
    EliteResult elite;               // of the run over the elite rules
    RecordedWalk tree;               // of the walk
    // From depth `alternatives` on: the fewest changes for spam and for ham, at most one of each.
    std::vector<Alternative> alternatives;
    // Of a verdict of spam, from the same depth on: what would have let the message pass.
    std::optional<SingleChanges> singleChanges;

    // The scan reached the rules: the attributes are complete.
    bool isJudged() const { return verdict.decision != Decision::notReached; }
};

} // namespace Quorvane

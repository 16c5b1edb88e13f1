// SPDX-License-Identifier: Apache-2.0
//
// ReceivedScanner: one parse of the text of one Received header.
//
// It works on the stored text itself: lower-cases it and cuts it down to the part before the
// receiving host, because a second parse (of a header that abandoned the first) has to see the
// shortened text. An object lives for one parse; nothing is synchronised.
//
// What it understands, after lower-casing (blank: space or tab):
//
//   header   = from-part [by-marker name ...]
//   from-part= "from" blanks ( paren-form / helo-form ) [";" time]
//   paren    = name "(" [("helo" / "ehlo") sep name ")" "("] [name "["] address ("]" / ")")
//   helo-form= name "[" address "]" "helo=" name (")" / " ")
//
// The machine tolerates everything else: a missing piece leaves its field empty.
#pragma once

#include "platform/IPAddress.h"
#include "platform/Resolver.h"

#include <cstdint>
#include <string>

namespace Quorvane {

// The forged state before anyone asked.
inline constexpr std::int32_t forgedNotKnown = -1;

// What the scanner finds, a plain record. It outlives a parse: a header that is parsed again starts
// from the fields that the previous parse left.
struct ReceivedFields {
    bool m_isParsed = false; // set by a completed parse
    std::string m_from;
    std::string m_reverseName;
    std::string m_by;
    IPAddress m_address;
    std::int32_t m_forged = forgedNotKnown;               // else the cached answer
    LookupResult m_forgedLookup = LookupResult::notAsked; // what that answer rests on
    bool m_privateIP = true;                              // a hop without address counts as private
    bool m_authenticated = false;
    std::string m_receiveTime;
};

class ReceivedScanner {
  public:
    // Both are kept by reference for the life of the scanner.
    ReceivedScanner(std::string& text, ReceivedFields& fields) : m_text(text), m_fields(fields) {}

    // Throws std::out_of_range when the text ends in the marker "by ".
    void parse();

  private:
    using Position = std::string::size_type;

    enum class State : std::uint8_t {
        keyword,
        nameBeforeParenthesis,
        insideParenthesis,
        address,
        reverseName,
        bracketedAddress,
        heloName,
        done,
        abandoned,
    };

    void splitOffReceivingHost();
    Position findByMarker() const;
    void takeReceivingHost(Position start, Position cut);
    void takeFoldedReceivingHost();

    bool runStates();
    State runState(State state);
    State scanKeyword();
    State scanNameBeforeParenthesis();
    State scanInsideParenthesis();
    bool scanHeloAnnotation();
    State scanAddress();
    State scanReverseName();
    State scanBracketedAddress();
    State scanHeloName();

    bool takeName(std::string& field, Position start, Position length);
    void takeAddress(Position start, Position end);

    void finish();
    void takeReceiveTime();
    void takeAddressFromReverseName();
    void judge();

    std::string& m_text;
    ReceivedFields& m_fields;
    Position m_position = 0;
};

} // namespace Quorvane

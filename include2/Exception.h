// SPDX-License-Identifier: Apache-2.0
//
// Exception: the one failure type of both libraries, thrown and caught by value.
//
// It carries a text (the "string parameter"), a coarse category (the "int parameter"), the name of
// the source unit that threw and a line in it, and optionally the exception that caused it.
// Categories: 1 a missing implementation or handle, 2 a header of the wrong type, 3 bad
// configuration of the platform library, 4 a reference-counting or engine failure.
//
// It is deliberately unrelated to std::exception: the engine tells its own failures from all
// others by their type. Copies share the recorded cause, which never changes once recorded.
// Distinct objects may be used on distinct threads; one object is not synchronised.
#pragma once

#include "include2/Export.h"

#include <memory>
#include <string>

namespace Quorvane {

class QV_API Exception {
  public:
    // `intParameter` is the category. A null `fileName` and line 0 mean that no location is known.
    Exception(std::string const& text, int intParameter, char const* fileName,
              unsigned int lineNumber);
    Exception(Exception const&) = default;
    Exception& operator=(Exception const&) = default;
    virtual ~Exception();

    // What went wrong. It may quote a message, so it can hold any byte; asString shows it safely.
    virtual std::string const& stringParameter() const;
    // Replaces the text.
    virtual void stringParameter(std::string const& text);
    // The category, 1 to 4.
    virtual int intParameter() const;
    // Replaces the category.
    virtual void intParameter(int category);
    // Empty when no location is known.
    virtual std::string const& fileName() const;
    // Replaces it.
    virtual void fileName(std::string const& name);
    // The same; null empties it.
    virtual void fileName(char const* name);
    // 0 when no location is known.
    virtual unsigned int lineNumber() const;
    // Replaces it.
    virtual void lineNumber(unsigned int line);
    // Records a copy of `cause`. Of a subclass only the Exception part is kept.
    virtual void cause(Exception const& cause);
    // REQUIRES: hasCause().
    virtual Exception const& cause() const;
    // A cause was recorded.
    virtual bool hasCause() const;

    // Text, category and, when known, file and line on one line; control characters of the text
    // are shown as \xNN so that a hostile message cannot forge a second log line.
    std::string asString() const;

  private:
    std::string m_text;
    std::string m_fileName;
    int m_category;
    unsigned int m_line;
    std::shared_ptr<Exception const> m_cause;
};

} // namespace Quorvane

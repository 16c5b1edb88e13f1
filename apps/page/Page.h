// SPDX-License-Identifier: Apache-2.0
//
// One self-contained HTML document: it loads nothing, so it can be mailed, archived and opened from
// a disk. Light and dark follow the reader's system; it fits a phone and prints.
//
// Its content security policy lets the browser apply the one style and run the one script that
// stand in it, known by their hashes, and nothing else: no attribute style="", no onclick="", no
// image, font or connection. Colours of drawings are classes (or presentation attributes such as
// fill=""), positions are attributes. A page must show everything without its script, too; scripts
// are for convenience.
//
//     Page::Document document;
//     document.m_title = "Tree of " + path; // any bytes
//     document.m_style = treeStyle();   // tree.css, linked in by qv_embed_text
//     document.m_script = treeScript(); // tree.js, likewise
//     document.m_body = "<h1>" + Page::text(path) + "</h1>" + Page::dataElement("tree", json);
//     std::cout << Page::html(document);
#pragma once

#include <string>
#include <string_view>

namespace Quorvane::Page {

struct Document {
    std::string m_title; // plain text, escaped when written
    std::string m_body;  // HTML; foreign text in it went through Escape.h
    // Of files of ours, linked in by qv_embed_text (cmake/QvBuild.cmake): CSS that comes after the
    // theme, and a script that runs at the end of the body. Empty for none.
    std::string m_style;
    std::string m_script;
    // The script may send requests to where the page was loaded from. Only for pages that a program
    // serves.
    bool m_asksOrigin = false;
};

// The theme of all pages: theme.css, whose head lists the variables and classes that pages use.
std::string_view theme();

// The whole document. std::invalid_argument when style or script hold the end tag of their
// element, or a carriage return or NUL, which a browser would change before it hashes: that is a
// mistake in a file of ours.
std::string html(Document const& document);

// What a content security policy calls the text of an inline style or script: "sha256-...".
std::string contentHash(std::string_view text);

} // namespace Quorvane::Page

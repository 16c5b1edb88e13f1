// SPDX-License-Identifier: Apache-2.0
//
// Foreign text in a page. Names of files and corpora, and everything from a message, may hold any
// bytes; nothing of it may become markup. Pure functions.
#pragma once

#include <string>
#include <string_view>

namespace Quorvane::Page {

// Text for the content of an element and for attribute values in double quotes, in HTML and SVG.
// Bytes that are not UTF-8 are shown as Latin-1, control characters (line ends too) as \xNN.
std::string text(std::string_view bytes);

// The same in an element of its own, so that text from right to left, and characters that change
// the direction, do not affect the text around it: for names within a sentence or a table cell.
std::string isolated(std::string_view bytes);

// A script element that holds data and is never run; scripts read it with
//     JSON.parse(document.getElementById(id).textContent)
// `json` is a whole JSON text in UTF-8. Its strings may hold "</script>", "<!--" and the like.
// `id` is ours: letters, digits and hyphens.
std::string dataElement(std::string_view id, std::string_view json);

} // namespace Quorvane::Page

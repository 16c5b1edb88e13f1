# SPDX-License-Identifier: Apache-2.0
# Comments of the headers as Doxygen wants them. The first paragraph of a header is about the file.
1s|^// SPDX.*|/// \\file|
/\/\//s|\\xNN|\\\\xNN|g
s|^( *)// |\1/// |
s|^( *)//$|\1///|
s|; +// |; ///< |

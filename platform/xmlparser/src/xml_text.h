// Rules for names and texts, as they stand between the markup.
#ifndef XMLPARSER_XML_TEXT_H
#define XMLPARSER_XML_TEXT_H

#include <string_view>

// A name of an element or attribute: a letter, "_", ":" or a byte beyond ASCII, then also digits, "-" and ".".
bool IsName(std::string_view name);
// Whether XML can hold the text: no control characters but tab and line breaks.
bool IsText(std::string_view text);
// Whether the text is sound where markup ends it: as above, no "<", no "]]>", and each "&" begins one of the
// five entities of XML or the number of a character that a text can hold.
bool IsEscapedText(std::string_view text);

#endif

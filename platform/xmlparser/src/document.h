// How the handles of the interface stand for the XML library's.
#ifndef XMLPARSER_DOCUMENT_H
#define XMLPARSER_DOCUMENT_H

#include <pugixml.hpp>

#include "xmlparser.h"

struct dom_Document {
  pugi::xml_document tree;
};

// An element's handle is the library's own pointer: nothing to allocate, nothing to free.
inline pugi::xml_node NodeOf(const dom_Element* element) {
  return pugi::xml_node(reinterpret_cast<pugi::xml_node_struct*>(const_cast<dom_Element*>(element)));
}

inline dom_Element* ElementOf(const pugi::xml_node& node) {
  return reinterpret_cast<dom_Element*>(node.internal_object());
}

#endif

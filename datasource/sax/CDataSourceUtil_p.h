#pragma once
// A small path walker over a DOM node, for the one document the store ever
// holds as a tree: the schema that lists the class types. A step may carry
// the prefix "child::" or "attribute::"; "#text" and "text()" name the text.
#include <velmora/foundation/CString.h>

#include <xercesc/dom/DOMNode.hpp>

namespace Velmora::DB {

class VELMORA_API CDataSourceUtil
{
public:
  using Node = XERCES_CPP_NAMESPACE::DOMNode;

  // The node at the end of a path of steps joined by "/"; null when a step finds nothing.
  static Node * SelectSingleNode(Node * node, CString const & path);
  // One step from `node`.
  static Node * GetNode(Node * node, CString const & step);
  // The first child element of that name, qualified or local; null if none.
  static Node * getChildNode(Node * node, CString const & name);
  // The attribute node of that name; null if none or `node` is no element.
  static Node * findAttribute(Node * node, CString const & name);
};

} // namespace Velmora::DB

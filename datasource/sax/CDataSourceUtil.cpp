#include <velmora/datasource/sax/CDataSourceUtil_p.h>

#include <velmora/datasource/sax/SAXHandler_p.h>

#include <QStringList>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>

namespace Velmora::DB {

namespace {
bool NameIs(CDataSourceUtil::Node const * node, CString const & name)
{
  return SAX::FromXml(node->getNodeName()) == name || SAX::FromXml(node->getLocalName()) == name;
}
} // namespace

CDataSourceUtil::Node * CDataSourceUtil::SelectSingleNode(Node * node, CString const & path)
{
  for (QString const & step : path.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
    if (!node)
      return nullptr;
    node = GetNode(node, CString(step));
  }
  return node;
}

CDataSourceUtil::Node * CDataSourceUtil::GetNode(Node * node, CString const & step)
{
  if (!node)
    return nullptr;
  if (step.startsWith(QLatin1String("attribute::")))
    return findAttribute(node, CString(step.mid(11)));
  QString const name = step.startsWith(QLatin1String("child::")) ? step.mid(7) : QString(step);
  if (name == QLatin1String("#text") || name == QLatin1String("text()")) {
    for (Node * child = node->getFirstChild(); child; child = child->getNextSibling())
      if (child->getNodeType() == Node::TEXT_NODE)
        return child;
    return nullptr;
  }
  return getChildNode(node, CString(name));
}

CDataSourceUtil::Node * CDataSourceUtil::getChildNode(Node * node, CString const & name)
{
  if (!node)
    return nullptr;
  for (Node * child = node->getFirstChild(); child; child = child->getNextSibling())
    if (child->getNodeType() == Node::ELEMENT_NODE && NameIs(child, name))
      return child;
  return nullptr;
}

CDataSourceUtil::Node * CDataSourceUtil::findAttribute(Node * node, CString const & name)
{
  if (!node || node->getNodeType() != Node::ELEMENT_NODE)
    return nullptr;
  XERCES_CPP_NAMESPACE::DOMNamedNodeMap * attributes = node->getAttributes();
  for (XMLSize_t i = 0; attributes && i < attributes->getLength(); ++i)
    if (NameIs(attributes->item(i), name))
      return attributes->item(i);
  return nullptr;
}

} // namespace Velmora::DB

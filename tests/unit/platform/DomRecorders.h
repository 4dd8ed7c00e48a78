// Recording implementations of the document object model.
#pragma once

#include "platform/XmlDom.h"
#include "tests/unit/platform/Recorder.h"

namespace platform_test {

template <class Interface = IDispatch>
struct DispatchRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, GetTypeInfoCount, UINT*);
  RECORD(HRESULT, GetTypeInfo, UINT, LCID, ITypeInfo**);
  RECORD(HRESULT, GetIDsOfNames, REFIID, LPOLESTR*, UINT, LCID, DISPID*);
  RECORD(HRESULT, Invoke, DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*);
};

template <class Interface = IXMLDOMNode>
struct XMLDOMNodeRecorder : DispatchRecorder<Interface> {
  RECORD(HRESULT, get_nodeName, BSTR*);
  RECORD(HRESULT, get_nodeValue, VARIANT*);
  RECORD(HRESULT, put_nodeValue, VARIANT);
  RECORD(HRESULT, get_nodeType, DOMNodeType*);
  RECORD(HRESULT, get_parentNode, IXMLDOMNode**);
  RECORD(HRESULT, get_childNodes, IXMLDOMNodeList**);
  RECORD(HRESULT, get_firstChild, IXMLDOMNode**);
  RECORD(HRESULT, get_lastChild, IXMLDOMNode**);
  RECORD(HRESULT, get_previousSibling, IXMLDOMNode**);
  RECORD(HRESULT, get_nextSibling, IXMLDOMNode**);
  RECORD(HRESULT, get_attributes, IXMLDOMNamedNodeMap**);
  RECORD(HRESULT, insertBefore, IXMLDOMNode*, VARIANT, IXMLDOMNode**);
  RECORD(HRESULT, replaceChild, IXMLDOMNode*, IXMLDOMNode*, IXMLDOMNode**);
  RECORD(HRESULT, removeChild, IXMLDOMNode*, IXMLDOMNode**);
  RECORD(HRESULT, appendChild, IXMLDOMNode*, IXMLDOMNode**);
  RECORD(HRESULT, hasChildNodes, VARIANT_BOOL*);
  RECORD(HRESULT, get_ownerDocument, IXMLDOMDocument**);
  RECORD(HRESULT, cloneNode, VARIANT_BOOL, IXMLDOMNode**);
  RECORD(HRESULT, get_nodeTypeString, BSTR*);
  RECORD(HRESULT, get_text, BSTR*);
  RECORD(HRESULT, put_text, BSTR);
  RECORD(HRESULT, get_specified, VARIANT_BOOL*);
  RECORD(HRESULT, get_definition, IXMLDOMNode**);
  RECORD(HRESULT, get_nodeTypedValue, VARIANT*);
  RECORD(HRESULT, put_nodeTypedValue, VARIANT);
  RECORD(HRESULT, get_dataType, VARIANT*);
  RECORD(HRESULT, put_dataType, BSTR);
  RECORD(HRESULT, get_xml, BSTR*);
  RECORD(HRESULT, transformNode, IXMLDOMNode*, BSTR*);
  RECORD(HRESULT, selectNodes, BSTR, IXMLDOMNodeList**);
  RECORD(HRESULT, selectSingleNode, BSTR, IXMLDOMNode**);
  RECORD(HRESULT, get_parsed, VARIANT_BOOL*);
  RECORD(HRESULT, get_namespaceURI, BSTR*);
  RECORD(HRESULT, get_prefix, BSTR*);
  RECORD(HRESULT, get_baseName, BSTR*);
  RECORD(HRESULT, transformNodeToObject, IXMLDOMNode*, VARIANT);
};

template <class Interface = IXMLDOMDocument>
struct XMLDOMDocumentRecorder : XMLDOMNodeRecorder<Interface> {
  RECORD(HRESULT, get_doctype, IXMLDOMDocumentType**);
  RECORD(HRESULT, get_implementation, IXMLDOMImplementation**);
  RECORD(HRESULT, get_documentElement, IXMLDOMElement**);
  RECORD(HRESULT, putref_documentElement, IXMLDOMElement*);
  RECORD(HRESULT, createElement, BSTR, IXMLDOMElement**);
  RECORD(HRESULT, createDocumentFragment, IXMLDOMDocumentFragment**);
  RECORD(HRESULT, createTextNode, BSTR, IXMLDOMText**);
  RECORD(HRESULT, createComment, BSTR, IXMLDOMComment**);
  RECORD(HRESULT, createCDATASection, BSTR, IXMLDOMCDATASection**);
  RECORD(HRESULT, createProcessingInstruction, BSTR, BSTR, IXMLDOMProcessingInstruction**);
  RECORD(HRESULT, createAttribute, BSTR, IXMLDOMAttribute**);
  RECORD(HRESULT, createEntityReference, BSTR, IXMLDOMEntityReference**);
  RECORD(HRESULT, getElementsByTagName, BSTR, IXMLDOMNodeList**);
  RECORD(HRESULT, createNode, VARIANT, BSTR, BSTR, IXMLDOMNode**);
  RECORD(HRESULT, nodeFromID, BSTR, IXMLDOMNode**);
  RECORD(HRESULT, load, VARIANT, VARIANT_BOOL*);
  RECORD(HRESULT, get_readyState, __LONG32*);
  RECORD(HRESULT, get_parseError, IXMLDOMParseError**);
  RECORD(HRESULT, get_url, BSTR*);
  RECORD(HRESULT, get_async, VARIANT_BOOL*);
  RECORD(HRESULT, put_async, VARIANT_BOOL);
  RECORD(HRESULT, abort, );
  RECORD(HRESULT, loadXML, BSTR, VARIANT_BOOL*);
  RECORD(HRESULT, save, VARIANT);
  RECORD(HRESULT, get_validateOnParse, VARIANT_BOOL*);
  RECORD(HRESULT, put_validateOnParse, VARIANT_BOOL);
  RECORD(HRESULT, get_resolveExternals, VARIANT_BOOL*);
  RECORD(HRESULT, put_resolveExternals, VARIANT_BOOL);
  RECORD(HRESULT, get_preserveWhiteSpace, VARIANT_BOOL*);
  RECORD(HRESULT, put_preserveWhiteSpace, VARIANT_BOOL);
  RECORD(HRESULT, put_onreadystatechange, VARIANT);
  RECORD(HRESULT, put_ondataavailable, VARIANT);
  RECORD(HRESULT, put_ontransformnode, VARIANT);
};

template <class Interface = IXMLDOMDocument2>
struct XMLDOMDocument2Recorder : XMLDOMDocumentRecorder<Interface> {
  RECORD(HRESULT, get_namespaces, IXMLDOMSchemaCollection**);
  RECORD(HRESULT, get_schemas, VARIANT*);
  RECORD(HRESULT, putref_schemas, VARIANT);
  RECORD(HRESULT, validate, IXMLDOMParseError**);
  RECORD(HRESULT, setProperty, BSTR, VARIANT);
  RECORD(HRESULT, getProperty, BSTR, VARIANT*);
};

template <class Interface = IXMLDOMDocument3>
struct XMLDOMDocument3Recorder : XMLDOMDocument2Recorder<Interface> {
  RECORD(HRESULT, validateNode, IXMLDOMNode*, IXMLDOMParseError**);
  RECORD(HRESULT, importNode, IXMLDOMNode*, VARIANT_BOOL, IXMLDOMNode**);
};

template <class Interface = IXMLDOMNodeList>
struct XMLDOMNodeListRecorder : DispatchRecorder<Interface> {
  RECORD(HRESULT, get_item, __LONG32, IXMLDOMNode**);
  RECORD(HRESULT, get_length, __LONG32*);
  RECORD(HRESULT, nextNode, IXMLDOMNode**);
  RECORD(HRESULT, reset, );
  RECORD(HRESULT, get__newEnum, IUnknown**);
};

template <class Interface = IXMLDOMParseError>
struct XMLDOMParseErrorRecorder : DispatchRecorder<Interface> {
  RECORD(HRESULT, get_errorCode, __LONG32*);
  RECORD(HRESULT, get_url, BSTR*);
  RECORD(HRESULT, get_reason, BSTR*);
  RECORD(HRESULT, get_srcText, BSTR*);
  RECORD(HRESULT, get_line, __LONG32*);
  RECORD(HRESULT, get_linepos, __LONG32*);
  RECORD(HRESULT, get_filepos, __LONG32*);
};

}  // namespace platform_test

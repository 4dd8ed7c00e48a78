// An XML parser of the test's own: it notes what it is asked, holds what a test puts into it, and
// refuses on demand. Nothing in it is counted; the test owns all.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/XmlDom.h"
#include "tests/unit/platform/DomRecorders.h"

namespace stelvane {

/// Counts the operations on a document and refuses one of them.
class Refusals {
 public:
  static constexpr auto kRefused = static_cast<HRESULT>(0x8007AAAA);

  /// The `nth` call (from 1) of that operation.
  void Refuse(std::string operation, int nth) {
    operation_ = std::move(operation);
    nth_ = nth;
  }
  /// An operation's result: S_OK or kRefused.
  HRESULT Ask(const std::string& operation) {
    const int call = ++calls_[operation];
    return operation == operation_ && call == nth_ ? kRefused : S_OK;
  }
  /// Gives a text, or null with the refusal.
  HRESULT Give(const std::string& operation, const std::basic_string<WCHAR>& text, BSTR* place) {
    const HRESULT result = Ask(operation);
    *place = SUCCEEDED(result) ? SysAllocString(text.c_str()) : nullptr;
    return result;
  }
  /// Gives an object, or null with the refusal.
  template <class Interface>
  HRESULT Give(const std::string& operation, Interface* object, Interface** place) {
    const HRESULT result = Ask(operation);
    *place = SUCCEEDED(result) ? object : nullptr;
    return result;
  }
  const std::map<std::string, int>& Calls() const { return calls_; }

 private:
  std::string operation_;
  int nth_ = 0;
  std::map<std::string, int> calls_;
};

/// Walked over once.
class FakeNodeList final : public platform_test::XMLDOMNodeListRecorder<> {
 public:
  FakeNodeList(Refusals& refusals, std::vector<IXMLDOMNode*> nodes)
      : refusals_(refusals), nodes_(std::move(nodes)) {}

  HRESULT STDMETHODCALLTYPE nextNode(IXMLDOMNode** node) override {
    const bool ends = next_ == nodes_.size();
    const HRESULT result = refusals_.Give("nextNode", ends ? nullptr : nodes_[next_++], node);
    return ends && SUCCEEDED(result) ? S_FALSE : result;
  }

 private:
  Refusals& refusals_;
  const std::vector<IXMLDOMNode*> nodes_;
  std::size_t next_ = 0;
};

/// Its children can be asked for once.
class FakeNode final : public platform_test::XMLDOMNodeRecorder<> {
 public:
  FakeNode(Refusals& refusals, const WCHAR* name, const WCHAR* text,
           std::vector<IXMLDOMNode*> children = {})
      : refusals_(refusals), name_(name), text_(text), children_(refusals, std::move(children)) {}

  HRESULT STDMETHODCALLTYPE get_text(BSTR* text) override {
    return refusals_.Give("get_text", text_, text);
  }
  HRESULT STDMETHODCALLTYPE get_xml(BSTR* text) override {
    return refusals_.Give("get_xml", text_, text);
  }
  HRESULT STDMETHODCALLTYPE get_nodeName(BSTR* name) override {
    return refusals_.Give("get_nodeName", name_, name);
  }
  HRESULT STDMETHODCALLTYPE get_baseName(BSTR* name) override {
    return refusals_.Give("get_baseName", name_, name);
  }
  HRESULT STDMETHODCALLTYPE get_childNodes(IXMLDOMNodeList** children) override {
    return refusals_.Give<IXMLDOMNodeList>("get_childNodes", &children_, children);
  }

 private:
  Refusals& refusals_;
  const std::basic_string<WCHAR> name_;
  const std::basic_string<WCHAR> text_;
  FakeNodeList children_;
};

/// Notes its settings, the file asked for and the queries. Without `ids` it takes no document, as
/// with an invalid one.
class FakeParser final : public platform_test::XMLDOMDocument3Recorder<> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = this;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE put_async(VARIANT_BOOL on) override { return NoteFlag("async", on); }
  HRESULT STDMETHODCALLTYPE put_validateOnParse(VARIANT_BOOL on) override {
    return NoteFlag("validate", on);
  }
  HRESULT STDMETHODCALLTYPE put_resolveExternals(VARIANT_BOOL on) override {
    return NoteFlag("externals", on);
  }
  HRESULT STDMETHODCALLTYPE setProperty(BSTR name, VARIANT value) override {
    calls.push_back(Narrow(name) + "=" + Narrow(value.bstrVal));
    return propertyResult;
  }
  HRESULT STDMETHODCALLTYPE load(VARIANT file, VARIANT_BOOL* taken) override {
    calls.push_back("load " + Narrow(file.bstrVal));
    *taken = ids != nullptr || record != nullptr ? VARIANT_TRUE : VARIANT_FALSE;
    return loadResult;
  }
  HRESULT STDMETHODCALLTYPE get_xml(BSTR* text) override {
    return refusals.Give("get_xml", std::basic_string<WCHAR>(), text);
  }
  HRESULT STDMETHODCALLTYPE selectNodes(BSTR query, IXMLDOMNodeList** nodes) override {
    calls.push_back(Narrow(query));
    return refusals.Give("selectNodes", ids, nodes);
  }
  HRESULT STDMETHODCALLTYPE selectSingleNode(BSTR query, IXMLDOMNode** node) override {
    calls.push_back(Narrow(query));
    return refusals.Give("selectSingleNode", record, node);
  }

  std::vector<std::string> calls;
  HRESULT propertyResult = S_OK;
  HRESULT loadResult = S_FALSE;
  IXMLDOMNodeList* ids = nullptr;
  IXMLDOMNode* record = nullptr;
  Refusals refusals;

 private:
  static std::string Narrow(const WCHAR* text) {
    std::string narrow;
    for (; *text != 0; ++text) narrow.push_back(static_cast<char>(*text));
    return narrow;
  }
  HRESULT NoteFlag(const char* name, VARIANT_BOOL on) {
    calls.push_back(std::string(name) + (on == VARIANT_FALSE ? " off" : " on"));
    return S_OK;
  }
};

/// Serves the parser's class with one object while it lives, on a thread that it initialises for
/// COM.
class FakeParserClass {
 public:
  FakeParserClass() {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    CoRegisterClassObject(clsid::kDomDocument60, &factory_, CLSCTX_INPROC_SERVER,
                          REGCLS_MULTIPLEUSE, &registration_);
  }
  ~FakeParserClass() {
    CoRevokeClassObject(registration_);
    CoUninitialize();
  }
  FakeParserClass(const FakeParserClass&) = delete;
  FakeParserClass& operator=(const FakeParserClass&) = delete;

  FakeParser& parser() { return factory_.parser; }
  /// What the making of a parser gives.
  void SetResult(HRESULT result) { factory_.result = result; }

 private:
  class Factory final : public platform_test::UnknownRecorder<IClassFactory> {
   public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
      *object = this;
      return S_OK;
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID, void** object) override {
      *object = SUCCEEDED(result) ? &parser : nullptr;
      return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

    FakeParser parser;
    HRESULT result = S_OK;
  };

  Factory factory_;
  DWORD registration_ = 0;
};

}  // namespace stelvane

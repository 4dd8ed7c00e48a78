#include "tests/sweep/XmlCalls.h"

#include <atomic>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "base/ComPtr.h"
#include "platform/XmlDom.h"

namespace bench {

namespace {

// More methods than any of the parser's interfaces has.
constexpr std::size_t kSlots = 96;

std::atomic<CallRecord*> record{nullptr};

/// A method table in the place of the parser's own; the object finds it before its own methods.
struct Table {
  void** original;
  void* slots[kSlots];
};

void*** TableOf(void* object) {
  return static_cast<void***>(object);
}

void* Original(void* object, std::size_t slot) {
  auto* const slots = reinterpret_cast<char*>(*TableOf(object));
  const auto* const table = reinterpret_cast<Table*>(slots - offsetof(Table, slots));
  return table->original[slot];
}

/// The place of a virtual method in its table, as the compiler's pointer to it says.
template <class Method>
std::size_t SlotOf(Method method) {
  std::uintptr_t offset = 0;
  std::memcpy(&offset, &method, sizeof offset);
  return (offset - 1) / sizeof(void*);  // the 1 marks a virtual method
}

enum class Kind { kDocument, kNode, kList };
void Watch(void* object, Kind kind);

// What a method hands out is watched too.
template <class Argument>
void WatchResult(Argument) {}
void WatchResult(IXMLDOMNode** node) {
  if (*node != nullptr) Watch(*node, Kind::kNode);
}
void WatchResult(IXMLDOMNodeList** list) {
  if (*list != nullptr) Watch(*list, Kind::kList);
}

/// Stands in for one method, which `kName` names.
template <auto kName, class... Arguments>
struct Method {
  static HRESULT STDMETHODCALLTYPE Call(void* self, Arguments... arguments) {
    const auto original =
        reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)(void*, Arguments...)>(Original(self, slot));
    const HRESULT result = record.load()->Run("xml", kName, [&] {
      const HRESULT done = original(self, arguments...);
      if (SUCCEEDED(done)) (WatchResult(arguments), ...);
      return done;
    });
    return result;
  }
  static std::size_t slot;
};
template <auto kName, class... Arguments>
std::size_t Method<kName, Arguments...>::slot = 0;

template <std::size_t kSize>
struct Name {
  // Made from a literal.
  constexpr Name(const char (&text)[kSize]) {  // NOLINT(google-explicit-constructor)
    std::copy_n(text, kSize, characters);
  }
  constexpr operator std::string_view() const {  // NOLINT(google-explicit-constructor)
    return {characters, kSize - 1};
  }
  char characters[kSize]{};
};

template <Name kName, class Interface, class... Arguments>
void Replace(Table& table, HRESULT (STDMETHODCALLTYPE Interface::*method)(Arguments...)) {
  using Stand = Method<kName, Arguments...>;
  Stand::slot = SlotOf(method);
  table.slots[Stand::slot] = reinterpret_cast<void*>(&Stand::Call);
}

void ReplaceNode(Table& table) {
  Replace<"IXMLDOMNode::get_text">(table, &IXMLDOMNode::get_text);
  Replace<"IXMLDOMNode::get_baseName">(table, &IXMLDOMNode::get_baseName);
  Replace<"IXMLDOMNode::get_nodeName">(table, &IXMLDOMNode::get_nodeName);
  Replace<"IXMLDOMNode::get_childNodes">(table, &IXMLDOMNode::get_childNodes);
  Replace<"IXMLDOMNode::get_xml">(table, &IXMLDOMNode::get_xml);
}

void ReplaceDocument(Table& table) {
  Replace<"IXMLDOMDocument::put_async">(table, &IXMLDOMDocument3::put_async);
  Replace<"IXMLDOMDocument::put_validateOnParse">(table, &IXMLDOMDocument3::put_validateOnParse);
  Replace<"IXMLDOMDocument::put_resolveExternals">(table, &IXMLDOMDocument3::put_resolveExternals);
  Replace<"IXMLDOMDocument::setProperty">(table, &IXMLDOMDocument3::setProperty);
  Replace<"IXMLDOMDocument::load">(table, &IXMLDOMDocument3::load);
  Replace<"IXMLDOMDocument::get_xml">(table, &IXMLDOMDocument3::get_xml);
  Replace<"IXMLDOMDocument::selectNodes">(table, &IXMLDOMDocument3::selectNodes);
  Replace<"IXMLDOMDocument::selectSingleNode">(table, &IXMLDOMDocument3::selectSingleNode);
}

Table* NewTable(void** original, Kind kind) {
  auto table = std::make_unique<Table>();
  table->original = original;
  std::copy_n(original, kSlots, table->slots);
  switch (kind) {
    case Kind::kDocument:
      ReplaceDocument(*table);
      break;
    case Kind::kNode:
      ReplaceNode(*table);
      break;
    case Kind::kList:
      Replace<"IXMLDOMNodeList::nextNode">(*table, &IXMLDOMNodeList::nextNode);
      break;
  }
  return table.release();
}

// One table for each of the parser's, kept for good: an object may outlive its watcher.
void Watch(void* object, Kind kind) {
  static std::mutex mutex;
  static std::map<void**, Table*> tables;
  const std::lock_guard lock(mutex);
  void** const original = *TableOf(object);
  for (const auto& [known, table] : tables) {
    if (original == table->slots) return;  // watched already
  }
  Table*& table = tables[original];
  if (table == nullptr) table = NewTable(original, kind);
  *TableOf(object) = table->slots;
}

class DocumentFactory final : public IClassFactory {
 public:
  explicit DocumentFactory(stelvane::ComPtr<IClassFactory> real) : real_(std::move(real)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
    *object = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    const HRESULT result = real_->CreateInstance(outer, iid, object);
    if (SUCCEEDED(result) && iid == iidOf<IXMLDOMDocument3>) Watch(*object, Kind::kDocument);
    return result;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  virtual ~DocumentFactory() = default;
  const stelvane::ComPtr<IClassFactory> real_;
  std::atomic<ULONG> references_{0};
};

stelvane::ComPtr<IClassFactory> RealFactory() {
  const HMODULE parser = LoadLibraryW(L"msxml6.dll");
  if (parser == nullptr) throw std::runtime_error("there is no XML parser");
  const auto get = reinterpret_cast<LPFNGETCLASSOBJECT>(
      reinterpret_cast<void*>(GetProcAddress(parser, "DllGetClassObject")));
  stelvane::ComPtr<IClassFactory> factory;
  if (get == nullptr || FAILED(get(clsid::kDomDocument60, IID_IClassFactory,
                                   reinterpret_cast<void**>(factory.Put())))) {
    throw std::runtime_error("the XML parser gives no documents");
  }
  return factory;
}

}  // namespace

XmlCalls::XmlCalls(CallRecord& calls) {
  record = &calls;
  const stelvane::ComPtr<IClassFactory> factory(new DocumentFactory(RealFactory()));
  if (FAILED(CoRegisterClassObject(clsid::kDomDocument60, factory.Get(), CLSCTX_INPROC_SERVER,
                                   REGCLS_MULTIPLEUSE, &registration_))) {
    throw std::runtime_error("the XML parser's class cannot be registered");
  }
}

XmlCalls::~XmlCalls() {
  CoRevokeClassObject(registration_);
}

}  // namespace bench

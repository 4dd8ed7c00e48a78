// Classes, variants, registry, texts and tracing of the stand-in.
#include <gtest/gtest.h>
#include <objbase.h>
#include <oleauto.h>
#include <propidl.h>
#include <wmistr.h>

#include <evntrace.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "platform/Iid.h"
#include "tests/native/Native.h"
#include "workbench/clock/VirtualClock.h"
#include "workbench/imports/TraceSession.h"

namespace {

std::string Narrow(const WCHAR* text) {
  std::string narrow;
  for (; *text != 0; ++text) narrow.push_back(static_cast<char>(*text));
  return narrow;
}

constexpr CLSID kClass = {
    0x0c15d503, 0xd017, 0x47ce, {0x90, 0x16, 0x7b, 0x3f, 0x97, 0x87, 0x21, 0xcc}};

/// A class whose one object is the factory itself.
class Factory final : public IClassFactory {
 public:
  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (!IsEqualIID(iid, iidOf<IUnknown>) && !IsEqualIID(iid, iidOf<IClassFactory>)) {
      return E_NOINTERFACE;
    }
    *object = this;
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++references; }
  ULONG Release() override { return --references; }
  HRESULT CreateInstance(IUnknown* /*outer*/, REFIID iid, void** object) override {
    return QueryInterface(iid, object);
  }
  HRESULT LockServer(BOOL /*lock*/) override { return S_OK; }

  std::atomic<ULONG> references{1};
};

class NativeClasses : public testing::Test {
 protected:
  NativeClasses() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
  ~NativeClasses() override { CoUninitialize(); }
};

TEST_F(NativeClasses, ARegisteredClassIsFoundUntilItIsRevoked) {
  Factory factory;
  DWORD cookie = 0;
  ASSERT_EQ(
      CoRegisterClassObject(kClass, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
      S_OK);
  void* object = nullptr;
  EXPECT_EQ(CoCreateInstance(kClass, nullptr, CLSCTX_INPROC_SERVER, iidOf<IUnknown>, &object),
            S_OK);
  EXPECT_EQ(object, &factory);
  factory.Release();
  EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
  EXPECT_EQ(CoCreateInstance(kClass, nullptr, CLSCTX_INPROC_SERVER, iidOf<IUnknown>, &object),
            REGDB_E_CLASSNOTREG);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(factory.references, 1u);
}

TEST_F(NativeClasses, AnInterfaceThatTheObjectLacksIsRefusedWithoutALeak) {
  Factory factory;
  DWORD cookie = 0;
  CoRegisterClassObject(kClass, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie);
  void* object = nullptr;
  EXPECT_EQ(CoCreateInstance(kClass, nullptr, CLSCTX_INPROC_SERVER, kClass, &object),
            E_NOINTERFACE);
  CoRevokeClassObject(cookie);
  EXPECT_EQ(factory.references, 1u);
}

TEST_F(NativeClasses, AnotherThreadUsesComWhileThisOneKeepsItInitialized) {
  HRESULT result = S_OK;
  std::thread([&result] {
    void* object = nullptr;
    result = CoCreateInstance(kClass, nullptr, CLSCTX_INPROC_SERVER, iidOf<IUnknown>, &object);
  }).join();
  EXPECT_EQ(result, REGDB_E_CLASSNOTREG);
}

TEST(NativeClassesWithoutCom, NothingIsCreatedWhileNoThreadHasInitializedCom) {
  void* object = nullptr;
  EXPECT_EQ(CoCreateInstance(kClass, nullptr, CLSCTX_INPROC_SERVER, iidOf<IUnknown>, &object),
            CO_E_NOTINITIALIZED);
}

TEST_F(NativeClasses, ASecondInitializationOfAThreadIsCounted) {
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
  CoUninitialize();
  void* object = nullptr;
  EXPECT_EQ(CoCreateInstance(kClass, nullptr, CLSCTX_INPROC_SERVER, iidOf<IUnknown>, &object),
            REGDB_E_CLASSNOTREG);
}

TEST(NativeIdText, IsUpperCaseWithBraces) {
  LPOLESTR text = nullptr;
  ASSERT_EQ(StringFromCLSID(kClass, &text), S_OK);
  EXPECT_EQ(Narrow(text), "{0C15D503-D017-47CE-9016-7B3F978721CC}");
  CoTaskMemFree(text);
}

TEST(NativeVariant, ClearingReleasesAnObjectAndEmptiesTheValue) {
  Factory object;
  PROPVARIANT value;
  PropVariantInit(&value);
  object.AddRef();
  value.vt = VT_UNKNOWN;
  value.punkVal = &object;
  EXPECT_EQ(PropVariantClear(&value), S_OK);
  EXPECT_EQ(value.vt, VT_EMPTY);
  EXPECT_EQ(object.references, 1u);
}

TEST(NativeVariant, ClearingFreesTheBytesOfAnEmptyVector) {
  PROPVARIANT value;
  PropVariantInit(&value);
  value.vt = VT_VECTOR | VT_UI1;
  value.caub = {0, nullptr};
  EXPECT_EQ(PropVariantClear(&value), S_OK);
  EXPECT_EQ(value.vt, VT_EMPTY);
}

TEST(NativeBstr, KnowsItsLengthAndNullHasNone) {
  const BSTR text = SysAllocString(L"abc");
  EXPECT_EQ(SysStringLen(text), 3u);
  EXPECT_EQ(Narrow(text), "abc");
  SysFreeString(text);
  EXPECT_EQ(SysAllocString(nullptr), nullptr);
  EXPECT_EQ(SysStringLen(nullptr), 0u);
  SysFreeString(nullptr);
}

TEST(NativeRegistry, GivesTheDwordThatWasSetAndError2Otherwise) {
  DWORD data = 0;
  DWORD size = sizeof data;
  const auto read = [&] {
    return RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\A", L"B", RRF_RT_REG_DWORD, nullptr, &data,
                        &size);
  };
  EXPECT_EQ(read(), 2);
  native::SetRegistryDword(L"SOFTWARE\\A", L"B", 17);
  EXPECT_EQ(read(), ERROR_SUCCESS);
  EXPECT_EQ(data, 17u);
  native::ClearRegistry();
  EXPECT_EQ(read(), 2);
}

TEST(NativeMessageText, IsNoneUnlessATestSetsIt) {
  WCHAR* text = nullptr;
  const auto format = [&] {
    return FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 5,
                          0, reinterpret_cast<LPWSTR>(&text), 0, nullptr);
  };
  EXPECT_EQ(format(), 0u);
  EXPECT_EQ(GetLastError(), ERROR_MR_MID_NOT_FOUND);
  native::SetMessageText(L"Denied.");
  EXPECT_EQ(format(), 7u);
  EXPECT_EQ(Narrow(text), "Denied.");
  LocalFree(text);
  native::SetMessageText(nullptr);
}

TEST(NativeText, ConvertsBothWaysAndTellsTheSizeNeeded) {
  WCHAR wide[4] = {};
  EXPECT_EQ(MultiByteToWideChar(CP_THREAD_ACP, 0, "ab\xE9", -1, nullptr, 0), 4);
  EXPECT_EQ(MultiByteToWideChar(CP_THREAD_ACP, 0, "ab\xE9", -1, wide, 4), 4);
  EXPECT_EQ(wide[2], 0xE9);
  char narrow[3] = {};
  EXPECT_EQ(WideCharToMultiByte(CP_THREAD_ACP, 0, wide, 3, narrow, 3, nullptr, nullptr), 3);
  EXPECT_EQ(std::string(narrow, 3), "ab\xE9");
  EXPECT_EQ(WideCharToMultiByte(CP_THREAD_ACP, 0, L"\x20AC", 1, narrow, 1, nullptr, nullptr), 1);
  EXPECT_EQ(narrow[0], '?');
}

TEST(NativeText, ARoomThatIsTooSmallIsRefused) {
  WCHAR wide[2] = {};
  EXPECT_EQ(MultiByteToWideChar(CP_THREAD_ACP, 0, "abc", 3, wide, 2), 0);
  EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
}

TRACEHANDLE heardLogger = 0;
ULONG OnControl(WMIDPREQUESTCODE /*request*/, void* /*context*/, ULONG* /*size*/, void* buffer) {
  heardLogger = GetTraceLoggerHandle(buffer);
  return ERROR_SUCCESS;
}

TEST(NativeTracing, AProviderHearsOfTheListenerAndIsHeard) {
  bench::VirtualClock clock;
  bench::TraceSession session(clock);
  native::UseTraceSession(&session);
  TRACE_GUID_REGISTRATION messages = {&kClass, nullptr};
  TRACEHANDLE registration = 0;
  ASSERT_EQ(RegisterTraceGuidsW(OnControl, nullptr, &kClass, 1, &messages, nullptr, nullptr,
                                &registration),
            ULONG{ERROR_SUCCESS});
  session.Enable(4, 0xFF);
  EXPECT_EQ(GetTraceEnableLevel(heardLogger), 4);
  EXPECT_EQ(GetTraceEnableFlags(heardLogger), 0xFFu);
  const ULONG value = 0x01020304;
  TraceMessage(heardLogger, TRACE_MESSAGE_GUID, &kClass, 10, &value, SIZE_T{sizeof value},
               static_cast<void*>(nullptr));
  const std::vector<bench::TraceRecord> heard = session.TakeMessages();
  ASSERT_EQ(heard.size(), 1u);
  EXPECT_EQ(heard[0].number, 10);
  EXPECT_EQ(heard[0].arguments, (std::vector<BYTE>{4, 3, 2, 1}));
  UnregisterTraceGuids(registration);
  EXPECT_TRUE(session.Providers().empty());
  native::UseTraceSession(nullptr);
}

TEST(NativeTracing, WithoutASessionAProviderRegistersAndNobodyListens) {
  TRACE_GUID_REGISTRATION messages = {&kClass, nullptr};
  TRACEHANDLE registration = 0;
  EXPECT_EQ(RegisterTraceGuidsW(OnControl, nullptr, &kClass, 1, &messages, nullptr, nullptr,
                                &registration),
            ULONG{ERROR_SUCCESS});
  EXPECT_NE(registration, 0u);
  EXPECT_NE(TraceMessage(1, 0, &kClass, 10, static_cast<void*>(nullptr)), ULONG{ERROR_SUCCESS});
  EXPECT_EQ(UnregisterTraceGuids(registration), ULONG{ERROR_SUCCESS});
}

}  // namespace

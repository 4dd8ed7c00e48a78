// What Windows' own installer writes into the registry when it carries out the INF.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <setupapi.h>

#include <string>
#include <vector>

#include "tests/package/InfFile.h"
#include "tests/package/PackageInf.h"
#include "workbench/framework/DevicePlan.h"

namespace package_test {
namespace {

constexpr const wchar_t* kScratch = L"Software\\Stelvane package test";
constexpr const wchar_t* kSwitchKey = L"SOFTWARE\\Tavrel\\Stelvane";
constexpr const wchar_t* kSwitch = L"DisableInternalGNSS";
constexpr DWORD kLongest = 256;  // characters

/// A scratch key stands for the device's hardware key.
class InfInstallTest : public testing::Test {
 protected:
  void SetUp() override {
    RegDeleteTreeW(HKEY_CURRENT_USER, kScratch);
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kScratch, &key_), ERROR_SUCCESS);
  }
  void TearDown() override {
    RegCloseKey(key_);
    RegDeleteTreeW(HKEY_CURRENT_USER, kScratch);
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kSwitchKey);
  }

  void Install(const wchar_t* section) {
    EXPECT_TRUE(SetupInstallFromInfSectionW(nullptr, inf_.Handle(), section, SPINST_REGISTRY, key_,
                                            nullptr, 0, nullptr, nullptr, nullptr, nullptr))
        << GetLastError();
  }

  std::u16string Text(const wchar_t* subkey, const std::u16string& name) const {
    WCHAR text[kLongest] = {};
    DWORD size = sizeof(text);
    const std::wstring wide(name.begin(), name.end());
    EXPECT_EQ(RegGetValueW(key_, subkey, wide.c_str(), RRF_RT_REG_SZ, nullptr, text, &size),
              ERROR_SUCCESS);
    const std::wstring found = text;
    return {found.begin(), found.end()};
  }

  std::vector<std::wstring> Texts(const wchar_t* name) const {
    WCHAR texts[kLongest] = {};
    DWORD size = sizeof(texts);
    EXPECT_EQ(RegGetValueW(key_, nullptr, name, RRF_RT_REG_MULTI_SZ, nullptr, texts, &size),
              ERROR_SUCCESS);
    std::vector<std::wstring> list;
    for (const WCHAR* text = texts; *text != 0; text += list.back().size() + 1) {
      list.emplace_back(text);
    }
    return list;
  }

  static DWORD Number(HKEY key, const wchar_t* subkey, const wchar_t* name) {
    DWORD number = 0xFFFF'FFFF;
    DWORD size = sizeof(number);
    EXPECT_EQ(RegGetValueW(key, subkey, name, RRF_RT_REG_DWORD, nullptr, &number, &size),
              ERROR_SUCCESS);
    return number;
  }

  HKEY key_ = nullptr;
  const InfFile inf_{kPackageInf};
};

TEST_F(InfInstallTest, TheDeviceGetsTheValuesThatTheWorkbenchsDeviceHas) {
  Install(L"Stelvane.NT.HW");
  for (const auto& [name, value] : bench::DevicePlan::DefaultValues()) {
    EXPECT_EQ(Text(L"Stelvane", name), std::get<std::u16string>(value));
    EXPECT_EQ(Text(nullptr, name), std::get<std::u16string>(value));
  }
}

TEST_F(InfInstallTest, WinUsbBecomesALowerFilterBesideTheOthers) {
  constexpr WCHAR others[] = L"Other\0";
  RegSetValueExW(key_, L"LowerFilters", 0, REG_MULTI_SZ, reinterpret_cast<const BYTE*>(others),
                 sizeof(others));
  Install(L"Stelvane.NT.HW");
  EXPECT_THAT(Texts(L"LowerFilters"), testing::ElementsAre(L"Other", L"WinUsb"));
}

TEST_F(InfInstallTest, ThePowerPolicyIsTheDriversAndTheDeviceIsGuarded) {
  Install(L"Stelvane.NT.HW");
  EXPECT_EQ(Number(key_, nullptr, L"WinUsbPowerPolicyOwnershipDisabled"), 1U);
  EXPECT_EQ(Number(key_, nullptr, L"DeviceCharacteristics"), 0x100U);
  EXPECT_TRUE(Text(nullptr, u"Security").starts_with(u"D:P(A;;GA;;;BA)"));
}

TEST_F(InfInstallTest, TheFrameworksCoInstallerIsRegistered) {
  Install(L"Stelvane.NT.CoInstallers");
  EXPECT_THAT(Texts(L"CoInstallers32"), testing::ElementsAre(L"WudfCoInstaller.dll"));
}

TEST_F(InfInstallTest, TheSwitchStartsAtZeroAndAnUpdateKeepsWhatWasSet) {
  Install(L"Stelvane.NT");
  EXPECT_EQ(Number(HKEY_LOCAL_MACHINE, kSwitchKey, kSwitch), 0U);
  constexpr DWORD on = 1;
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, kSwitchKey, kSwitch, REG_DWORD, &on, sizeof(on));
  Install(L"Stelvane.NT");
  EXPECT_EQ(Number(HKEY_LOCAL_MACHINE, kSwitchKey, kSwitch), 1U);
}

}  // namespace
}  // namespace package_test

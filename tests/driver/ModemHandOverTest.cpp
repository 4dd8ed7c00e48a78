// The hand-over of the modem that the registry asks for.

#include <algorithm>

#include "tests/driver/ModemTest.h"

namespace bench {
namespace {

using testing::ElementsAre;

constexpr const char* kQuery =
    "AT@usbmwtestfw:usb_profile_get_nvm_configuration(USBPOW_ID_DEFAULT)";
constexpr const char* kSetMbim =
    "AT@usbmwtestfw:usb_profile_set_nvm_configuration(USBPOW_ID_DEFAULT,\"MBIM\",\"x\",1234,\"v\","
    "5678,\"p\")";
constexpr const char* kSetOld =
    "AT@usbmwtestfw:usb_profile_set_nvm_configuration(USBPOW_ID_DEFAULT,\"MBIM_GNSS\",\"x\",1234,"
    "\"v\",5678,\"p\")";
constexpr const char* kSet = "AT@usbmwtestfw:usb_profile_set_nvm_configuration(";
constexpr const char* kStore = "AT@nvm:store_nvm(fix_usb)";
constexpr const char* kShutdown = "AT+XLCSSHUTDOWN";
constexpr const char* kReset = "AT+CFUN=1,1";
constexpr const char* kProfile =
    "+USB: profile_str=\"MBIM_GNSS\";options_str=\"x\";vendor_id=1234;vendor_name=\"v\";"
    "product_id=5678;product_name=\"p\"";

constexpr const wchar_t* kKey = L"SOFTWARE\\Tavrel\\Stelvane";
constexpr const wchar_t* kValue = L"DisableInternalGNSS";

class ModemHandOver : public ModemTest {
 protected:
  SimulatedRegistry& Registry() { return rig_->redirector().Registry(); }
  void BuildDisabled() {
    Build();
    Registry().SetDword(HKEY_LOCAL_MACHINE, kKey, kValue, 1);
    modem_->Answer(kQuery, Ok({kProfile}));
  }
  /// What is sent when these commands of the hand-over are followed by a normal bring-up.
  static std::vector<std::string> ThenBringUp(std::vector<std::string> handOver) {
    std::vector<std::string> all = {"ATE1"};
    all.insert(all.end(), handOver.begin(), handOver.end());
    const auto rest = BringUp();
    all.insert(all.end(), rest.begin() + 1, rest.end());
    return all;
  }
};

TEST_F(ModemHandOver, SendsExactlyItsCommandsWithAPauseOf100MsAndNothingMore) {
  BuildDisabled();
  Start();
  Settle(60'000);
  EXPECT_THAT(Commands(), ElementsAre("ATE1", kQuery, kSetMbim, kStore, kShutdown, kReset));
  EXPECT_THAT(modem_->TimesOf(kShutdown), ElementsAre(0));
  EXPECT_THAT(modem_->TimesOf(kReset), ElementsAre(100));
}

TEST_F(ModemHandOver, TracesTheSixFieldsOfTheProfileThatWasRead) {
  constexpr GUID kProfileMessages = {
      0xf1d25b68, 0x4ba4, 0x4769, {0xb5, 0xbb, 0x60, 0x3d, 0x5e, 0x3c, 0xe9, 0x62}};
  constexpr USHORT kProfileRead = 13;
  BuildDisabled();
  rig_->redirector().Tracing().Enable(TRACE_LEVEL_VERBOSE, ~0U);
  Start();
  Settle(1000);
  std::vector<std::string> profiles;
  for (const TraceRecord& record : rig_->redirector().Tracing().TakeMessages()) {
    if (!IsEqualGUID(record.message, kProfileMessages) || record.number != kProfileRead) continue;
    std::string& fields = profiles.emplace_back(record.arguments.begin(), record.arguments.end());
    std::ranges::replace(fields, '\0', '|');
  }
  EXPECT_THAT(profiles, ElementsAre("MBIM_GNSS|x|1234|v|5678|p|"));
}

TEST_F(ModemHandOver, CountsAsASuccessfulBringUpAndIsNotRepeated) {
  BuildDisabled();
  Start();
  Settle(1000);
  modem_->Forget();
  ClientSession& client = Connect();
  EXPECT_THAT(Commands(), ElementsAre("AT+CIMI", "AT+XLCSLSR=1,1,,,,,,,,2,,"))
      << "initialised: events are dispatched";
  EXPECT_EQ(Number(client, CommonKey(23)), 0U);
}

TEST_F(ModemHandOver, IsNotAskedForByTheValue2) {
  Build();
  Registry().SetDword(HKEY_LOCAL_MACHINE, kKey, kValue, 2);
  Start();
  EXPECT_EQ(Commands(), BringUp());
}

TEST_F(ModemHandOver, IsNotAskedForByTheValue0) {
  Build();
  Registry().SetDword(HKEY_LOCAL_MACHINE, kKey, kValue, 0);
  Start();
  EXPECT_EQ(Commands(), BringUp());
}

TEST_F(ModemHandOver, IsNotAskedForByAText) {
  Build();
  Registry().SetText(HKEY_LOCAL_MACHINE, kKey, kValue, L"1");
  Start();
  EXPECT_EQ(Commands(), BringUp());
}

TEST_F(ModemHandOver, IsNotAskedForByAValueOfEightBytes) {
  Build();
  Registry().Set(HKEY_LOCAL_MACHINE, kKey, kValue, REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0});
  Start();
  EXPECT_EQ(Commands(), BringUp());
}

TEST_F(ModemHandOver, IsAskedForByTheOneByteThatReadsAs1) {
  BuildDisabled();
  Registry().Set(HKEY_LOCAL_MACHINE, kKey, kValue, REG_BINARY, {1});
  Start();
  Settle(1000);
  EXPECT_THAT(Commands(), testing::Contains(kReset));
}

TEST_F(ModemHandOver, TheValueIsReadOncePerBringUpFromItsPlace) {
  Build();
  Start();
  std::size_t reads = 0;
  for (const RegistryRead& read : Registry().Reads()) {
    if (read.value != kValue) continue;
    ++reads;
    EXPECT_EQ(read.root, HKEY_LOCAL_MACHINE);
    EXPECT_EQ(read.key, kKey);
    EXPECT_EQ(read.result, ERROR_FILE_NOT_FOUND);
  }
  EXPECT_EQ(reads, 1U);
}

TEST_F(ModemHandOver, AFailedQuerySendsTheProfileWithEmptyFields) {
  BuildDisabled();
  modem_->Answer(kQuery, Error());
  Start();
  Settle(1000);
  EXPECT_THAT(Commands(),
              ElementsAre("ATE1", kQuery,
                          "AT@usbmwtestfw:usb_profile_set_nvm_configuration(USBPOW_ID_DEFAULT,"
                          "\"MBIM\",\"\",,\"\",,\"\")",
                          kStore, kShutdown, kReset));
}

TEST_F(ModemHandOver, AProfileAnswerThatLacksFieldsSendsThoseEmpty) {
  BuildDisabled();
  modem_->Answer(kQuery,
                 Ok({"+USB: profile_str=\"A\";options_str=\"\";vendor_id=77;product_id=88"}));
  Start();
  Settle(1000);
  EXPECT_EQ(Commands().at(2),
            "AT@usbmwtestfw:usb_profile_set_nvm_configuration(USBPOW_ID_DEFAULT,"
            "\"MBIM\",\"\",77,\"\",,\"\")");
}

TEST_F(ModemHandOver, ARefusedSetCommandIsFollowedByANormalBringUpWithoutStoring) {
  BuildDisabled();
  modem_->Answer(kSet, Error());
  Start();
  Settle(1000);
  EXPECT_EQ(Commands(), ThenBringUp({kQuery, kSetMbim}));
}

TEST_F(ModemHandOver, ARefusedStoreIsFollowedByANormalBringUp) {
  BuildDisabled();
  modem_->Answer(kStore, Error());
  Start();
  Settle(1000);
  EXPECT_EQ(Commands(), ThenBringUp({kQuery, kSetMbim, kStore}));
}

TEST_F(ModemHandOver, ARefusedShutdownRestoresTheOldProfileAndANormalBringUpFollows) {
  BuildDisabled();
  modem_->Answer(kShutdown, Error());
  Start();
  Settle(1000);
  EXPECT_EQ(Commands(), ThenBringUp({kQuery, kSetMbim, kStore, kShutdown, kSetOld, kStore}));
}

TEST_F(ModemHandOver, ARefusedShutdownRestoresAnEmptyProfileAsItWasRead) {
  BuildDisabled();
  modem_->Answer(kQuery, Error());
  modem_->Answer(kShutdown, Error());
  Start();
  Settle(1000);
  EXPECT_EQ(Commands().at(5),
            "AT@usbmwtestfw:usb_profile_set_nvm_configuration(USBPOW_ID_DEFAULT,"
            "\"\",\"\",,\"\",,\"\")");
  EXPECT_EQ(Commands().at(7), "AT+XLCSSWITCH?");
}

TEST_F(ModemHandOver, ARefusedRestoreDoesNotKeepTheBringUpFromGoingOn) {
  BuildDisabled();
  modem_->Answer(kShutdown, Error());
  modem_->Answer(kSet, {Ok(), Error()});
  Start();
  Settle(1000);
  EXPECT_EQ(Commands(), ThenBringUp({kQuery, kSetMbim, kStore, kShutdown, kSetOld}));
}

TEST_F(ModemHandOver, ARefusedRestartIsFollowedByANormalBringUp) {
  BuildDisabled();
  modem_->Answer(kReset, Error());
  Start();
  Settle(1000);
  EXPECT_EQ(Commands(), ThenBringUp({kQuery, kSetMbim, kStore, kShutdown, kReset}));
}

}  // namespace
}  // namespace bench

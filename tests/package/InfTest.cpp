// The INF of the package keeps the rules, and a break of each rule is found.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objbase.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "base/ComPtr.h"
#include "platform/Iid.h"
#include "tests/package/InfRules.h"
#include "tests/package/PackageInf.h"

namespace package_test {
namespace {

TEST(InfTest, TheInfOfThePackageKeepsEveryRule) {
  EXPECT_THAT(CheckInf(InfFile(kPackageInf), Expected()), testing::IsEmpty());
}

TEST(InfTest, TheDriverServesTheClassThatTheInfNames) {
  const bench::DriverModule driver(kPackage / "Stelvane.dll");
  const InfFile inf(kPackageInf);
  const std::string text = inf.Lines("Stelvane_Umdf", "DriverCLSID").at(0).Field(0);
  EXPECT_EQ(text, kDriverClass);
  CLSID driverClass = {};
  ASSERT_EQ(CLSIDFromString(std::wstring(text.begin(), text.end()).c_str(), &driverClass), S_OK);
  stelvane::ComPtr<IClassFactory> factory;
  EXPECT_EQ(driver.GetClassObject(driverClass, IID_IClassFactory,
                                  reinterpret_cast<void**>(factory.Put())),
            S_OK);
}

TEST(InfTest, AFileThatIsMissingOrNoInfIsRefused) {
  EXPECT_THROW(const InfFile inf(kPackage / "None.inf"), std::runtime_error);
  EXPECT_THROW(const InfFile inf(kPackage / "Stelvane.dll"), std::runtime_error);
}

struct Breach {
  const char* name;
  const char* from;
  const char* to;
  const char* rule;
  const char* text;  // a part of the finding
};

void PrintTo(const Breach& breach, std::ostream* out) {
  *out << breach.name;
}

constexpr Breach kBreaches[] = {
    {"SectionMissing", "[Stelvane_Device]", "[Stelvane_Devices]", "references",
     "no section [Stelvane_Device]"},
    {"SectionUnused", "[Stelvane_Device]", "[Stelvane_Devices]", "orphans",
     "nothing refers to [Stelvane_Devices]"},
    {"NoCoInstallers", "[Stelvane.NT.CoInstallers]", "[Stelvane.NTx86.CoInstallers]", "references",
     "no section [Stelvane.NT.CoInstallers]"},
    {"ProcessorMissing", "Models,NTx86,NTamd64", "Models,NTx86", "decorations",
     "NTamd64 is not among"},
    {"ModelsDiffer", "[Models.NTamd64]\n%Desc", "[Models.NTamd64]\n%Model% = Stelvane,%Desc",
     "decorations", "NTamd64 has models of its own"},
    {"TwoInstallSections", "= Stelvane,%HardwareId%", "= Other,%HardwareId%", "decorations",
     "not one install section"},
    {"StringUndefined", "%DiskName%", "%DiscName%", "strings", "%DiscName% is not defined"},
    {"StringUnused", "%DiskName%", "\"disk\"", "strings", "%DiskName% is not used"},
    {"StringEmpty", "\"GNSS 1\"", "\"\"", "strings", "%Model% is empty"},
    {"OtherFolder", "12,UMDF", "12", "files", "do not go to drivers\\UMDF"},
    {"NoFolder", "Stelvane_Files = 12,UMDF", "", "files", "do not go to drivers\\UMDF"},
    {"FileNotCopied", "Stelvane.dll\nStelvaneSUPLInfo-DTD.xml\n", "Stelvane.dll\n", "files",
     "StelvaneSUPLInfo-DTD.xml is not copied"},
    {"FileWithoutSource", "StelvaneSUPLInfo-DTD.xml = 1\n\n[SourceDisksFiles.amd64]",
     "[SourceDisksFiles.amd64]", "files",
     "StelvaneSUPLInfo-DTD.xml is 0 times in SourceDisksFiles.x86"},
    {"SourceNotCopied", "Stelvane.dll             = 1,x86", "Stelvane.dll = 1,x86\nMore.dll = 1",
     "files", "More.dll of SourceDisksFiles.x86 is never copied"},
    {"FileNotInPackage", "= 1,x86", "= 1,arm", "files", "does not exist"},
    {"DiskWithoutName", "= 1,x86", "= 2,x86", "files", "disk 2, which has no name"},
    {"OtherClass", "{5175d334", "{5175d335", "version", "ClassGuid"},
    {"OtherClassName", "= Sensor", "= USB", "version", "Class is Sensor"},
    {"NoCatalogue", "CatalogFile", ";CatalogFile", "version", "CatalogFile"},
    {"OtherVersion", "," PROJECT_VERSION ".0", ",9.9.9.9", "version", "9.9.9.9"},
    {"NoSuchDate", "DriverVer   = ", "DriverVer   = 13/45/1999,1;", "version", "no past date"},
    {"FutureDate", "DriverVer   = ", "DriverVer   = 01/01/2999,1;", "version", "no past date"},
    {"NoStamp", "DriverVer   = ", "DriverVer   = @;", "version", "not one DriverVer"},
    {"NoUsbFunction", "USB\\VID_0000&PID_0000&MI_00", "USB\\VID_0000&PID_0000", "hardware-id",
     "not the id of a USB function"},
    {"OtherDispatcher", "= WinUsb\n", "= NativeUSB\n", "framework", "UmdfDispatcher is WinUsb"},
    {"NoOrder", "UmdfServiceOrder ", ";", "framework", "UmdfServiceOrder"},
    {"TwoOrders", "UmdfServiceOrder       = Stelvane\n",
     "UmdfServiceOrder = Stelvane\nUmdfServiceOrder = Stelvane\n", "framework", "UmdfServiceOrder"},
    {"SharedHost", "ProcessSharingDisabled", "ProcessSharingEnabled", "framework",
     "UmdfHostProcessSharing"},
    {"MoreDirectives", "UmdfDispatcher ", "UmdfKernelModeClientPolicy = Allow\nUmdfDispatcher ",
     "framework", "other directives"},
    {"LongServiceName", "UmdfService            = Stelvane,",
     "UmdfService = StelvaneStelvaneStelvaneStelvane,", "framework", "too long"},
    {"OtherFramework", "= 1.11.0", "= 1.9.0", "framework", "UmdfLibraryVersion is 1.11.0"},
    {"OtherDriverClass", "{ceeb6d87", "{ceeb6d88", "framework", "DriverCLSID"},
    {"OtherModule", "UMDF\\Stelvane.dll", "Stelvane.dll", "framework", "ServiceBinary"},
    {"WinUsbAsFunctionDriver", "0x000001f8", "0x000001fa", "services", "WinUsb with 0x000001f8"},
    {"ReflectorAsFilter", "WUDFRd,0x000001fa", "WUDFRd,0x000001f8", "services", "WUDFRd with"},
    {"OtherServiceBinary", "%12%\\WinUSB.sys", "%12%\\WUDFRd.sys", "services", "WinUSB.sys"},
    {"OneServiceMore", "AddService = WinUsb",
     "AddService = Third,0,Stelvane_WinUsb\nAddService = "
     "WinUsb",
     "services", "3 lines"},
    {"NoFilter", "HKR,,\"LowerFilters\"", ";", "registry", "LowerFilters"},
    {"FilterReplacesOthers", "0x00010008", "0x00010000", "registry", "LowerFilters"},
    {"WinUsbOwnsThePower", "\"WinUsbPowerPolicyOwnershipDisabled\",0x00010001,1",
     "\"WinUsbPowerPolicyOwnershipDisabled\",0x00010001,0", "registry", "PowerPolicy"},
    {"UsersMaySwitch", "(A;;GR;;;BU)", "(A;;GA;;;BU)", "registry", "Security"},
    {"SwitchIsOverwritten", "0x00010003", "0x00010001", "registry", "DisableInternalGNSS"},
    {"OtherCoInstaller", "WudfCoInstaller.dll", "WudfUpdate_01011.dll", "registry",
     "CoInstallers32"},
    {"ValueOnlyInOneKey", "HKR,,\"DevModel\"", ";", "device-values",
     "DevModel is not written once as a text to key ''"},
    {"ValueOnlyInTheOtherKey", "HKR,\"Stelvane\",\"DevSerialNumber\"", ";", "device-values",
     "DevSerialNumber is not written once as a text to key 'Stelvane'"},
    {"ValueIsANumber", "\"DevModel\",,%Model%", "\"DevModel\",0x00010001,1", "device-values",
     "DevModel"},
    {"OtherKeyThanTheService", "UmdfService            = Stelvane,", "UmdfService = Other,",
     "device-values", "to key 'Other'"},
};

class InfBreachTest : public testing::TestWithParam<Breach> {
 protected:
  void TearDown() override { std::filesystem::remove(path_); }

  /// The package's INF with one text replaced where it stands first.
  std::filesystem::path Broken(const Breach& breach) {
    std::string text = ReadText(kPackageInf);
    std::erase(text, '\r');
    const std::size_t place = text.find(breach.from);
    if (place == std::string::npos) throw std::runtime_error("the INF has no such text");
    text.replace(place, std::string(breach.from).size(), breach.to);
    std::ofstream(path_, std::ios::binary) << text;
    return path_;
  }

 private:
  const std::filesystem::path path_ =
      std::filesystem::temp_directory_path() / (std::string(GetParam().name) + ".inf");
};

TEST_P(InfBreachTest, IsFound) {
  const Breach& breach = GetParam();
  const InfFile inf(Broken(breach));
  EXPECT_THAT(CheckInf(inf, Expected()),
              testing::Contains(testing::AllOf(
                  testing::Field(&InfFinding::rule, breach.rule),
                  testing::Field(&InfFinding::text, testing::HasSubstr(breach.text)))));
}

INSTANTIATE_TEST_SUITE_P(Each, InfBreachTest, testing::ValuesIn(kBreaches),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace package_test

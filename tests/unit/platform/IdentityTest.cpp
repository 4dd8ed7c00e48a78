// The ids of interfaces and classes, as text.
#include <gtest/gtest.h>

#include <cstdio>
#include <ostream>
#include <string>

#include "platform/PortableDevices.h"
#include "platform/SensorClassExtension.h"
#include "platform/SensorKeys.h"
#include "platform/WdfCallbacks.h"
#include "platform/WdfDevice.h"
#include "platform/WdfDriver.h"
#include "platform/WdfIoTarget.h"
#include "platform/WdfRequest.h"
#include "platform/WdfUsb.h"
#include "platform/XmlDom.h"

namespace platform_test {

struct Identity {
  std::string name;
  GUID value;
  std::string text;
};

void PrintTo(const Identity& identity, std::ostream* out) {
  *out << identity.name;
}

namespace {

const Identity kIdentities[] = {
    {"IUnknown", iidOf<IUnknown>, "00000000-0000-0000-c000-000000000046"},
    {"IClassFactory", iidOf<IClassFactory>, "00000001-0000-0000-c000-000000000046"},
    {"IWDFObject", iidOf<IWDFObject>, "64275c66-2e71-4060-b5f4-3a76df96ed3c"},
    {"IDriverEntry", iidOf<IDriverEntry>, "1bec7499-8881-4f2b-b01c-a1a907304afc"},
    {"IPnpCallback", iidOf<IPnpCallback>, "27c32374-cc45-4840-857e-8e5ef7c0ebff"},
    {"IPnpCallbackHardware", iidOf<IPnpCallbackHardware>, "51433bd3-c7c1-4bd8-b4c1-ab1e034626cc"},
    {"IPnpCallbackSelfManagedIo", iidOf<IPnpCallbackSelfManagedIo>,
     "d1c9ca4c-46aa-46f8-bd8c-6ca9deb13340"},
    {"IFileCallbackCleanup", iidOf<IFileCallbackCleanup>, "35c5f79c-6d81-4819-aa64-d6a8939d94d6"},
    {"IQueueCallbackDeviceIoControl", iidOf<IQueueCallbackDeviceIoControl>,
     "c5411408-0f1e-4ed6-a412-36dd15eee707"},
    {"IObjectCleanup", iidOf<IObjectCleanup>, "244abe3a-abbc-43b1-a877-f00077550e6a"},
    {"IRequestCallbackRequestCompletion", iidOf<IRequestCallbackRequestCompletion>,
     "8a7cc8cb-ceb2-46f6-9851-77bd347a15c2"},
    {"IUsbTargetPipeContinuousReaderCallbackReadComplete",
     iidOf<IUsbTargetPipeContinuousReaderCallbackReadComplete>,
     "e44fc7cc-0037-45fe-b27c-3963fdf13997"},
    {"IUsbTargetPipeContinuousReaderCallbackReadersFailed",
     iidOf<IUsbTargetPipeContinuousReaderCallbackReadersFailed>,
     "4b891219-3c53-4a8c-8731-4e1b4be0e233"},
    {"IWDFDriver", iidOf<IWDFDriver>, "ad368ebe-4139-43e3-a875-69b266a9139c"},
    {"IWDFDeviceInitialize", iidOf<IWDFDeviceInitialize>, "74cc381c-0871-43c1-878b-3f7c9d16933d"},
    {"IWDFDevice", iidOf<IWDFDevice>, "d657fe45-460a-49c3-8219-766ae8032a80"},
    {"IWDFDevice2", iidOf<IWDFDevice2>, "1b0d07b1-f596-4a76-99b3-b9492ad8df9f"},
    {"IWDFDevice3", iidOf<IWDFDevice3>, "863d943a-c9cd-4655-a8d6-c84ef411cc0d"},
    {"IWDFNamedPropertyStore", iidOf<IWDFNamedPropertyStore>,
     "394b48c9-bca0-498f-8e2c-01225464a932"},
    {"IWDFIoQueue", iidOf<IWDFIoQueue>, "ae1162b9-8b11-4714-993d-93dc48cc9e8a"},
    {"IWDFIoRequest", iidOf<IWDFIoRequest>, "896df312-22b4-4a9d-95dd-a364aaf59769"},
    {"IWDFMemory", iidOf<IWDFMemory>, "ab098f88-8f16-472a-b0bc-eca46486c102"},
    {"IWDFFile", iidOf<IWDFFile>, "cc8fe04b-fe8b-4245-afd6-c31bc830c791"},
    {"IWDFRequestCompletionParams", iidOf<IWDFRequestCompletionParams>,
     "707a2b42-69b8-4971-a49c-4031861e7aff"},
    {"IWDFIoRequestCompletionParams", iidOf<IWDFIoRequestCompletionParams>,
     "723d4f3c-7722-4c49-99ae-195937bd9582"},
    {"IWDFUsbRequestCompletionParams", iidOf<IWDFUsbRequestCompletionParams>,
     "5cb1d859-f7ee-411e-9fa5-0159cc118324"},
    {"IWDFIoTarget", iidOf<IWDFIoTarget>, "cc060d79-c0c2-407f-8b10-a5e900fc3474"},
    {"IWDFIoTargetStateManagement", iidOf<IWDFIoTargetStateManagement>,
     "88b077aa-eff6-4eba-9e4d-064c70822b98"},
    {"IWDFUsbTargetFactory", iidOf<IWDFUsbTargetFactory>, "3f7becf9-3a65-4348-a4f3-339d5734a9c6"},
    {"IWDFUsbTargetDevice", iidOf<IWDFUsbTargetDevice>, "4cd12e96-900a-44c3-a1b7-05b8954dab76"},
    {"IWDFUsbInterface", iidOf<IWDFUsbInterface>, "a6714a4d-c764-498f-b6d2-032f10ca4e36"},
    {"IWDFUsbTargetPipe", iidOf<IWDFUsbTargetPipe>, "f373216e-8c42-4c5c-95b4-d2a40b99c0fa"},
    {"IWDFUsbTargetPipe2", iidOf<IWDFUsbTargetPipe2>, "8efe1ab4-f4a2-42bb-9b2b-bbada19d8b80"},
    {"ISensorDriver", iidOf<ISensorDriver>, "d262b6ba-87cc-495d-b639-939ef853bd3b"},
    {"ISensorClassExtension", iidOf<ISensorClassExtension>, "a31253ba-6f73-4bc9-abaa-26c8833c58ff"},
    {"IPortableDeviceValues", iidOf<IPortableDeviceValues>, "6848f6f2-3155-4f86-b6f5-263eeeab3143"},
    {"IPortableDeviceKeyCollection", iidOf<IPortableDeviceKeyCollection>,
     "dada2357-e0ad-492e-98db-dd61c53ba353"},
    {"IPortableDeviceValuesCollection", iidOf<IPortableDeviceValuesCollection>,
     "6e3f2d79-4e07-48c4-8208-d8c2e5af4a99"},
    {"PortableDeviceValuesClass", clsid::kPortableDeviceValues,
     "0c15d503-d017-47ce-9016-7b3f978721cc"},
    {"PortableDeviceKeyCollectionClass", clsid::kPortableDeviceKeyCollection,
     "de2d022d-2480-43be-97f0-d1fa2cf98f4f"},
    {"PortableDeviceValuesCollectionClass", clsid::kPortableDeviceValuesCollection,
     "3882134d-14cf-4220-9cb4-435f86d83f60"},
    {"SensorClassExtensionClass", clsid::kSensorClassExtension,
     "6101f767-998e-452b-b54a-e836dd486bad"},
    {"ObjectSet", keys::kObjectSet, "ef6b490d-5cd8-437a-affc-da8b60ee4a3c"},
    {"FunctionalObjectSet", keys::kFunctionalObjectSet, "8f052d93-abca-4fc5-a5ac-b01df4dbe598"},
    {"IXMLDOMDocument3", iidOf<IXMLDOMDocument3>, "2933bf96-7b36-11d2-b20e-00c04f983e60"},
    {"DomDocument60Class", clsid::kDomDocument60, "88d96a05-f192-11d4-a65f-0040963251e5"},
};

std::string TextOf(const GUID& id) {
  char text[40];
  std::snprintf(text, sizeof text, "%08lx-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x", id.Data1,
                id.Data2, id.Data3, id.Data4[0], id.Data4[1], id.Data4[2], id.Data4[3], id.Data4[4],
                id.Data4[5], id.Data4[6], id.Data4[7]);
  return text;
}

class PlatformIdentity : public testing::TestWithParam<Identity> {};

TEST_P(PlatformIdentity, HasThePublishedValue) {
  EXPECT_EQ(TextOf(GetParam().value), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Ids, PlatformIdentity, testing::ValuesIn(kIdentities),
                         [](const auto& suite) { return suite.param.name; });

}  // namespace
}  // namespace platform_test

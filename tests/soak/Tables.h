// The texts and values that decisions choose from by their number.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string_view>

#include "platform/SensorKeys.h"
#include "workbench/sensorapi/Variant.h"

namespace soak {

/// Report intervals in milliseconds: the shortest, both sides of every bracket, and refused ones.
inline constexpr std::int64_t kIntervals[] = {
    0,     1000,   1000,   1500,   2000,   2000,    3000,    5000,    7999,    8000,    8001,
    9000,  10000,  9999,   1000,   5000,   1,       500,     999,     15000,   30000,   60000,
    60001, 120000, 300000, 600000, 600001, 1800000, 3600000, 3600001, 7200000, 7200001, 14400000};

/// Both SIMs of the configuration file, one that it does not know, and ones that are none.
inline constexpr std::string_view kSims[] = {
    "001010123456789", "999990123456789", "262011234567890", "31041012345678", "12345", ""};

inline constexpr std::string_view kStrayLines[] = {
    "OK",
    "ERROR",
    "+CME ERROR: 4",
    "+XLCSLSR: ERROR: no position",
    "+XLSRSTOP: 3",
    "+XLCSSWITCH : 0",
    "+USB: profile_str=\"x\"",
    "+XLCSLSR: request id 4000000000",
    "+XLCSLSR: 1,2,3",
    "$GPXXX,nobody*00",
    "@nvm",
    "AT+CIMI",
    "RING",
};

inline constexpr std::string_view kCommands[] = {
    "*",          "ATE1",        "AT+CIMI",    "AT+XLCSSWITCH",  "AT+XLCSLQOS",
    "AT+CCLK",    "AT+XLCSSLP",  "AT+XLCSTER", "AT+XLCSSUPLVER", "AT+XLCSLSR",
    "AT+XLCSLSR", "AT+XLSRSTOP", "AT+XLGNVRAM"};

/// Nothing stands for no file at all.
inline constexpr std::string_view kConfigs[] = {
    "", "the demo's", "<SUPLInfo>", "no document type: <a/>", "the demo's, its address gone"};

inline constexpr ULONG kOddCodes[] = {0x89056000, 0x8905A008, 0x8905A00C, 0x12345678, 0x00404108};

/// A write of a property: accepted ones, refused ones and ones of a wrong type. A list of lead
/// times with a zero in it is left out: the call would go on for as long as the results take it.
struct Write {
  PROPERTYKEY key;
  VARTYPE type;
  std::uint32_t number;
  std::string_view text;
};
inline constexpr GUID kDriverSet = {
    0xaf4d65c7, 0xc7a2, 0x4e3b, {0xb4, 0x49, 0xbb, 0xb1, 0x12, 0x3b, 0x65, 0xbf}};
inline constexpr GUID kAssistanceSet = {
    0xe1e962f4, 0x6e65, 0x45f7, {0x9c, 0x36, 0xd4, 0x87, 0xb7, 0xb1, 0xbd, 0x34}};
inline constexpr Write kWrites[] = {
    {{kDriverSet, 3}, VT_LPWSTR, 0, "5,10,15,20,25,30"},
    {{kDriverSet, 3}, VT_LPWSTR, 0, "3,6,10,20,40,50"},
    {{kDriverSet, 3}, VT_LPWSTR, 0, "5,10"},
    {{kDriverSet, 3}, VT_LPWSTR, 0, "1,2,3,4,5,6,7,8"},
    {{kDriverSet, 3}, VT_LPWSTR, 0, "-4,7,8,8,9,9"},
    {{kDriverSet, 3}, VT_UI4, 7, ""},
    {{kDriverSet, 4}, VT_UI4, 1, ""},
    {{kDriverSet, 4}, VT_UI4, 0, ""},
    {{kDriverSet, 5}, VT_UI4, 4294967295, ""},
    {{kDriverSet, 5}, VT_UI4, 1, ""},
    {{kDriverSet, 2}, VT_BOOL, 0, ""},
    {{kDriverSet, 6}, VT_BOOL, 0, ""},
    {{kDriverSet, 9}, VT_UI4, 1, ""},
    {{kAssistanceSet, 2}, VT_UI4, 2, ""},
    {{keys::kSensorCommonSet, 13}, VT_EMPTY, 0, ""},
    {{keys::kSensorCommonSet, 19}, VT_UI4, 1, ""},
    {{keys::kSensorCommonSet, 12}, VT_UI4, 500, ""},
    {{keys::kObjectSet, 4}, VT_LPWSTR, 0, "another name"},
};

}  // namespace soak

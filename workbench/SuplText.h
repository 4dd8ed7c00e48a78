// The SUPL configuration that the demo runs with unless it is given one.
#pragma once

#include <string_view>

namespace bench {

/// Two test networks and a default; the servers' names are reserved for examples.
inline constexpr std::string_view kDemoSuplConfig = R"(<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE SUPLInfo [
  <!ELEMENT SUPLInfo (SUPL*)>
  <!ELEMENT SUPL (Supl_Ver_Info, SuplServer)>
  <!ATTLIST SUPL SID CDATA #REQUIRED>
  <!ELEMENT Supl_Ver_Info (#PCDATA)>
  <!ELEMENT SuplServer (Supl_Address_type, Supl_Address?, Supl_Port_Number)>
  <!ELEMENT Supl_Address_type (#PCDATA)>
  <!ELEMENT Supl_Address (#PCDATA)>
  <!ELEMENT Supl_Port_Number (#PCDATA)>
]>
<SUPLInfo>
  <SUPL SID="_001010">
    <Supl_Ver_Info>2</Supl_Ver_Info>
    <SuplServer>
      <Supl_Address_type>1</Supl_Address_type>
      <Supl_Address>slp.example.com</Supl_Address>
      <Supl_Port_Number>7275</Supl_Port_Number>
    </SuplServer>
  </SUPL>
  <SUPL SID="_999990">
    <Supl_Ver_Info>1</Supl_Ver_Info>
    <SuplServer>
      <Supl_Address_type>0</Supl_Address_type>
      <Supl_Address>192.0.2.75</Supl_Address>
      <Supl_Port_Number>7276</Supl_Port_Number>
    </SuplServer>
  </SUPL>
  <SUPL SID="_Default">
    <Supl_Ver_Info>1</Supl_Ver_Info>
    <SuplServer>
      <Supl_Address_type>2</Supl_Address_type>
      <Supl_Port_Number>7275</Supl_Port_Number>
    </SuplServer>
  </SUPL>
</SUPLInfo>
)";

}  // namespace bench

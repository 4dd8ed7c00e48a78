// The SUPL settings of one operator, as the configuration file and the modem know them.
#pragma once

#include <string>

namespace stelvane {

/// Narrow texts, sent as they stand; the member names also stand in the traced messages.
struct SuplRecord {
  std::string m_strImsi;  // 14 or 15 digits
  std::string m_strMcc;   // mobile country code, 3 digits
  std::string m_strMnc;   // mobile network code, 2 or 3 digits
  std::string m_strSupl_Address_type;
  std::string m_strSupl_Address;
  std::string m_strSupl_Port_Number;
  std::string m_strSupl_Ver_Info;
};

}  // namespace stelvane

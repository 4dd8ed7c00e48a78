// The shipping DLL with a SUPL configuration file of the test's own, and what it traces about it.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "tests/driver/ModemTest.h"

namespace bench {

/// The text of one record; an empty part is left out.
struct SuplText {
  std::string sid = {};
  std::string version = "2";
  std::string type = "0";
  std::string address = "slp.example";
  std::string port = "7275";
};
std::string Record(const SuplText& record);
/// A whole file, with its declaration, of these records.
std::string File(std::initializer_list<SuplText> records);
/// The same with any content of the root element.
std::string FileWith(const std::string& content);

class SuplTest : public ModemTest {
 protected:
  /// Starts with this SIM and this configuration file (none when empty), listening to the trace;
  /// gives the commands behind the clock's.
  std::vector<std::string> Provision(const std::string& imsi, const std::string& file);
  /// The three commands of settings, behind the SIM's.
  static std::vector<std::string> Provisioned(const std::string& slpParameters,
                                              const std::string& version = "2");
  static std::vector<std::string> OnlySim() { return {"AT+CIMI"}; }

  void Listen();
  void SetSim(const std::string& imsi);
  /// Asks for one more fix, which looks at the SIM again; gives the commands up to the request.
  std::vector<std::string> NextStart();
  /// The kept messages traced so far.
  std::vector<std::string> Messages();
  /// The system's text, or the number, that stands behind the last of them.
  std::string LastCause();

 private:
  void Take();
  std::vector<std::pair<std::string, std::string>> kept_;
};

}  // namespace bench

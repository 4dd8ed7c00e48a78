#include "workbench/modem/AtCommands.h"

#include <array>
#include <vector>

#include "workbench/modem/TextNumber.h"

namespace bench {

namespace {

AtAnswer Error() {
  return {.ok = false, .information = {}};
}
AtAnswer Information(std::string line) {
  return {.ok = true, .information = std::move(line)};
}

/// The values between commas, their quotes kept; a comma inside quotes does not count.
std::vector<std::string> SplitParameters(std::string_view text) {
  std::vector<std::string> values(1);
  bool quoted = false;
  for (const char c : text) {
    if (c == '"') quoted = !quoted;
    if (c == ',' && !quoted) {
      values.emplace_back();
    } else {
      values.back() += c;
    }
  }
  return values;
}

bool IsQuoted(std::string_view text) {
  return text.size() >= 2 && text.front() == '"' && text.back() == '"';
}

std::string Unquoted(std::string_view text) {
  return std::string(IsQuoted(text) ? text.substr(1, text.size() - 2) : text);
}

AtAnswer Attention(std::string_view, AtContext&) {
  return {};
}

AtAnswer EchoOff(std::string_view, AtContext& context) {
  context.state.echo = false;
  return {};
}

AtAnswer EchoOn(std::string_view, AtContext& context) {
  context.state.echo = true;
  return {};
}

AtAnswer ReadImsi(std::string_view, AtContext& context) {
  return context.state.imsi.empty() ? Error() : Information(context.state.imsi);
}

AtAnswer ReadSwitch(std::string_view, AtContext& context) {
  return Information(context.state.engineOn ? "+XLCSSWITCH : 1" : "+XLCSSWITCH : 0");
}

AtAnswer SetSwitch(std::string_view parameters, AtContext& context) {
  const auto on = ToNumber<int>(SplitParameters(parameters).front());
  if (!on || *on < 0 || *on > 1) return Error();
  context.state.engineOn = *on == 1;
  context.state.engineRunning = context.state.engineOn;
  if (!context.state.engineOn) context.engine.Halt();
  return {};
}

AtAnswer ShutDown(std::string_view, AtContext& context) {
  context.state.engineRunning = false;
  context.engine.Halt();
  return {};
}

AtAnswer SetQos(std::string_view parameters, AtContext& context) {
  if (parameters.empty()) return Error();
  context.state.qos = parameters;
  return {};
}

AtAnswer SetClock(std::string_view parameters, AtContext& context) {
  if (!IsQuoted(parameters)) return Error();
  context.state.clock = Unquoted(parameters);
  return {};
}

// Twelve values: two numbers, four empty ones, the interval in seconds, five more.
AtAnswer StartLocation(std::string_view parameters, AtContext& context) {
  constexpr std::size_t kCount = 12;
  constexpr std::size_t kInterval = 6;
  const auto values = SplitParameters(parameters);
  if (!context.state.engineRunning || values.size() != kCount) return Error();
  for (const std::string& value : values) {
    if (!value.empty() && !ToNumber<std::uint32_t>(value)) return Error();
  }
  std::optional<Millis> interval;
  if (const auto seconds = ToNumber<std::uint32_t>(values[kInterval]); seconds && *seconds > 0) {
    interval = static_cast<Millis>(*seconds) * 1000;
  }
  const std::uint32_t id = context.engine.Start(context.now, interval);
  return Information("+XLCSLSR: request id " + std::to_string(id));
}

AtAnswer StopLocation(std::string_view parameters, AtContext& context) {
  const auto values = SplitParameters(parameters);
  if (values.size() != 2 || values[0] != "0") return Error();
  const auto id = ToNumber<std::uint32_t>(values[1]);
  if (!id || (!context.engine.Stop(*id) && context.options.unknownStopFails)) return Error();
  return Information("+XLSRSTOP: " + values[1]);
}

AtAnswer ClearAssistanceData(std::string_view, AtContext& context) {
  context.engine.ForgetAssistanceData();
  return {};
}

AtAnswer SetSuplServer(std::string_view parameters, AtContext& context) {
  const auto values = SplitParameters(parameters);
  if (values.size() != 3) return Error();
  context.state.supl.addressType = values[0];
  context.state.supl.address = Unquoted(values[1]);
  context.state.supl.port = values[2];
  return {};
}

AtAnswer SetTerminalInfo(std::string_view parameters, AtContext& context) {
  context.state.supl.terminalInfo = parameters;
  return {};
}

AtAnswer SetSuplVersion(std::string_view parameters, AtContext& context) {
  context.state.supl.version = parameters;
  return {};
}

AtAnswer Restart(std::string_view, AtContext&) {
  return {.ok = true, .information = {}, .restart = true};
}

AtAnswer ReadUsbProfile(std::string_view, AtContext& context) {
  const UsbProfile& usb = context.state.usbProfile;
  return Information("+USB: profile_str=\"" + usb.profile + "\";options_str=\"" + usb.options +
                     "\";vendor_id=" + usb.vendorId + ";vendor_name=\"" + usb.vendorName +
                     "\";product_id=" + usb.productId + ";product_name=\"" + usb.productName +
                     "\"");
}

// "<profile>","<options>",<vendor>,"<name>",<product>,"<name>")
AtAnswer SetUsbProfile(std::string_view parameters, AtContext& context) {
  if (parameters.empty() || parameters.back() != ')') return Error();
  parameters.remove_suffix(1);
  const auto values = SplitParameters(parameters);
  if (values.size() != 6) return Error();
  context.state.usbProfile = {.profile = Unquoted(values[0]),
                              .options = Unquoted(values[1]),
                              .vendorId = values[2],
                              .vendorName = Unquoted(values[3]),
                              .productId = values[4],
                              .productName = Unquoted(values[5])};
  return {};
}

AtAnswer StoreUsbProfile(std::string_view, AtContext& context) {
  context.state.storedUsbProfile = context.state.usbProfile;
  return {};
}

struct Command {
  std::string_view text;
  bool whole;  // otherwise the text is the beginning, and what follows are the parameters
  AtAnswer (*obey)(std::string_view parameters, AtContext& context);
};
constexpr std::array<Command, 19> kCommands = {{
    {"AT", true, Attention},
    {"ATE0", true, EchoOff},
    {"ATE1", true, EchoOn},
    {"AT+CIMI", true, ReadImsi},
    {"AT+XLCSSWITCH?", true, ReadSwitch},
    {"AT+XLCSSWITCH=", false, SetSwitch},
    {"AT+XLCSLQOS=", false, SetQos},
    {"AT+CCLK=", false, SetClock},
    {"AT+XLCSLSR=", false, StartLocation},
    {"AT+XLSRSTOP=", false, StopLocation},
    {"AT+XLGNVRAM=7,0", true, ClearAssistanceData},
    {"AT+XLCSSLP=", false, SetSuplServer},
    {"AT+XLCSTER=", false, SetTerminalInfo},
    {"AT+XLCSSUPLVER=", false, SetSuplVersion},
    {"AT+XLCSSHUTDOWN", true, ShutDown},
    {"AT+CFUN=1,1", true, Restart},
    {"AT@usbmwtestfw:usb_profile_get_nvm_configuration(USBPOW_ID_DEFAULT)", true, ReadUsbProfile},
    {"AT@usbmwtestfw:usb_profile_set_nvm_configuration(USBPOW_ID_DEFAULT,", false, SetUsbProfile},
    {"AT@nvm:store_nvm(fix_usb)", true, StoreUsbProfile},
}};

}  // namespace

AtAnswer Obey(std::string_view line, AtContext& context) {
  for (const Command& command : kCommands) {
    if (command.whole ? line == command.text : line.starts_with(command.text)) {
      return command.obey(line.substr(command.text.size()), context);
    }
  }
  return Error();
}

}  // namespace bench

#include "suplcheck/Options.h"

#include "suplcheck/Text.h"

namespace suplcheck {

namespace {

constexpr std::size_t kShortestImsi = 6;
constexpr std::size_t kLongestImsi = 15;

std::string InQuotes(const std::wstring& text) {
  return '"' + Utf8(text) + '"';
}

// These return what is wrong, or nothing.
std::string AddImsi(Options& options, const std::wstring& value) {
  std::string imsi = Utf8(value);
  if (!IsDigits(imsi) || imsi.size() < kShortestImsi || imsi.size() > kLongestImsi) {
    return "--imsi takes an IMSI of 6 to 15 digits, not " + InQuotes(value);
  }
  options.imsis.push_back(std::move(imsi));
  return {};
}

std::string SetFile(Options& options, const std::wstring& name) {
  if (name.empty()) return "the file name is empty";
  if (!options.file.empty()) {
    return "one file at a time, not " + InQuotes(options.file) + " and " + InQuotes(name);
  }
  options.file = name;
  return {};
}

}  // namespace

Options ReadOptions(const std::vector<std::wstring>& arguments) {
  const std::wstring imsiOption = L"--imsi";
  Options options;
  for (std::size_t i = 0; i < arguments.size() && options.error.empty(); ++i) {
    const std::wstring& argument = arguments[i];
    if (argument == L"--help" || argument == L"-h") {
      options.help = true;
      return options;
    }
    if (argument == imsiOption) {
      const bool last = ++i == arguments.size();
      options.error = last ? "--imsi needs a value" : AddImsi(options, arguments[i]);
    } else if (argument.starts_with(imsiOption + L"=")) {
      options.error = AddImsi(options, argument.substr(imsiOption.size() + 1));
    } else if (argument.starts_with(L"-")) {
      options.error = "no such option: " + InQuotes(argument) + "; try --help";
    } else {
      options.error = SetFile(options, argument);
    }
  }
  if (options.error.empty() && options.file.empty()) options.error = "no file given; try --help";
  return options;
}

const char* HelpText() {
  return "suplcheck FILE [--imsi N]...: reads a SUPL configuration file as the Stelvane driver\n"
         "does and tells what the driver would silently not find or not do.\n"
         "\n"
         "  --imsi N     show the record that the SIM with this IMSI (6 to 15 digits) gets, and\n"
         "               the commands that the modem is sent; may be repeated\n"
         "  --help       print this text\n"
         "\n"
         "The records are listed on the standard output, what is wrong on the standard error\n"
         "stream: FILE:LINE:COLUMN: error: ..., with the numbers where the XML parser gives them.\n"
         "A warning is about something that the driver passes over in silence; a note may well\n"
         "be meant.\n"
         "\n"
         "Exit code: 0 clean, 1 warnings, 2 the driver cannot use the file, or a bad option.\n";
}

}  // namespace suplcheck

#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace stelvane {

/// Field numbers of one form of the report, as its documentation lists them; 0 where a form has no
/// such field. Kept apart from the parser's own tables on purpose.
struct FormFields {
  unsigned form;
  unsigned errorRadius;
  unsigned altitudeEllipsoid;
  unsigned altitudeEllipsoidError;
  unsigned date;
  unsigned time;
  unsigned trueHeading;
  unsigned speedKnots;
  unsigned pdop;
  unsigned hdop;
  unsigned vdop;
  unsigned count;
};

inline constexpr FormFields kFormFields[] = {
    {0, 3, 0, 0, 4, 5, 8, 9, 17, 18, 19, 59},
    {1, 3, 0, 0, 7, 8, 11, 12, 20, 21, 22, 62},
    {2, 4, 3, 7, 9, 10, 13, 14, 22, 23, 24, 64},
    {3, 4, 0, 0, 8, 9, 12, 13, 21, 22, 23, 63},
};

inline constexpr unsigned kGroupFields = 8;

/// A report under construction: element 0 is the form number, element k field k.
using ReportFields = std::vector<std::string>;

/// A report in which each field up to the last satellite group is empty but for form and count.
inline ReportFields EmptyReport(const FormFields& form, unsigned satellites) {
  ReportFields fields(1 + form.count + satellites * kGroupFields);
  fields[0] = std::to_string(form.form);
  fields[form.count] = std::to_string(satellites);
  return fields;
}

/// A report in which each field holds its own number; so the count is the number of its field.
inline ReportFields NumberedReport(const FormFields& form) {
  ReportFields fields(1 + form.count + form.count * kGroupFields);
  for (std::size_t i = 1; i < fields.size(); ++i) fields[i] = std::to_string(i);
  fields[0] = std::to_string(form.form);
  return fields;
}

/// The line of the first `count` fields.
inline std::string Line(const ReportFields& fields, std::size_t count) {
  std::string line = "+XLCSLSR: ";
  for (std::size_t i = 0; i < count; ++i) {
    if (i != 0) line += ',';
    line += fields[i];
  }
  return line;
}

inline std::string Line(const ReportFields& fields) {
  return Line(fields, fields.size());
}

}  // namespace stelvane

// What a trace message is given that the driver itself never gives it.
#include <string>

#include "driver/Trace.h"
#include "modem/ErrorReport.h"
#include "tests/driver/RigTest.h"
#include "tests/native/Native.h"

namespace bench {
namespace {

using TraceArgument = RigTest;

TEST_F(TraceArgument, ANullTextIsSentAsTheTextNull) {
  const stelvane::trace::Str text(static_cast<const char*>(nullptr));
  EXPECT_STREQ(static_cast<const char*>(text.Data()), "NULL");
  EXPECT_EQ(text.Size(), 5U);
}

TEST_F(TraceArgument, ACharacterOfASystemTextThatIsNotAsciiBecomesAQuestionMark) {
  Load().redirector().Tracing().Enable(TRACE_LEVEL_VERBOSE, ~ULONG{0});
  native::SetMessageText(L"Gr\u00fc\u00dfe");
  stelvane::ReportError("cause:", E_FAIL);
  native::SetMessageText(nullptr);
  const auto messages = rig().redirector().Tracing().TakeMessages();
  ASSERT_FALSE(messages.empty());
  const std::vector<BYTE>& bytes = messages.back().arguments;
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), std::string("cause:\0Gr??e\0", 13));
}

}  // namespace
}  // namespace bench

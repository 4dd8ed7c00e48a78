#include "tests/driver/ModemScript.h"

#include <algorithm>
#include <utility>

namespace bench {

namespace {

std::string Line(std::string_view text) {
  return std::string(text) + "\r\n";
}

std::string_view WithoutLineEnd(std::string_view bytes) {
  if (bytes.ends_with("\r\n")) bytes.remove_suffix(2);
  return bytes;
}

}  // namespace

Reply Ok(std::vector<std::string> information) {
  return [information = std::move(information)](std::string_view command) {
    std::string text = Line(command);
    for (const std::string& line : information) text += Line(line);
    return text + Line("OK");
  };
}

Reply Error(std::string result) {
  return [result = std::move(result)](std::string_view command) {
    return Line(command) + Line(result);
  };
}

Reply Raw(std::string bytes) {
  return [bytes = std::move(bytes)](std::string_view) { return bytes; };
}

Reply Silence() {
  return Raw("");
}

ModemScript::ModemScript(const Clock& clock) : clock_(clock) {
  Answer("", Ok());
  Answer("AT+CIMI", Ok({kImsi}));
  Answer("AT+XLCSLSR=", Ok({"+XLCSLSR: request id 17"}));
  Answer("AT+XLSRSTOP=", Ok({"+XLSRSTOP: 17"}));
}

void ModemScript::Answer(std::string command, std::vector<Reply> replies) {
  const std::lock_guard lock(mutex_);
  rules_.push_back({.command = std::move(command), .replies = std::move(replies)});
}

void ModemScript::Answer(std::string command, Reply reply) {
  Answer(std::move(command), std::vector{std::move(reply)});
}

void ModemScript::Say(std::string_view bytes) {
  ByteSink sink;
  {
    const std::lock_guard lock(mutex_);
    sink = sink_;
  }
  if (sink) sink(bytes);
}

void ModemScript::RefuseControl(int nth, std::int32_t status) {
  const std::lock_guard lock(mutex_);
  refuseFrom_ = nth;
  refusal_ = status;
}

std::vector<ModemScript::Write> ModemScript::Writes() const {
  const std::lock_guard lock(mutex_);
  return writes_;
}

std::vector<std::string> ModemScript::Commands() const {
  std::vector<std::string> commands;
  for (const Write& write : Writes()) commands.emplace_back(WithoutLineEnd(write.bytes));
  return commands;
}

std::vector<Millis> ModemScript::TimesOf(std::string_view command) const {
  std::vector<Millis> times;
  for (const Write& write : Writes()) {
    if (WithoutLineEnd(write.bytes) == command) times.push_back(write.at);
  }
  return times;
}

std::vector<ControlRequest> ModemScript::ControlRequests() const {
  const std::lock_guard lock(mutex_);
  return controls_;
}

void ModemScript::Forget() {
  const std::lock_guard lock(mutex_);
  writes_.clear();
  controls_.clear();
}

std::int32_t ModemScript::OnControlRequest(const ControlRequest& request) {
  const std::lock_guard lock(mutex_);
  controls_.push_back(request);
  const bool refused = refuseFrom_ != 0 && static_cast<int>(controls_.size()) >= refuseFrom_;
  return refused ? refusal_ : 0;
}

std::int32_t ModemScript::OnHostWrite(std::string_view bytes) {
  Say(ReplyTo(bytes));
  return 0;
}

void ModemScript::SetSink(ByteSink sink) {
  const std::lock_guard lock(mutex_);
  sink_ = std::move(sink);
}

std::string ModemScript::ReplyTo(std::string_view bytes) {
  const Millis now = clock_.Now();
  const std::lock_guard lock(mutex_);
  writes_.push_back({.at = now, .bytes = std::string(bytes)});
  const std::string_view command = WithoutLineEnd(bytes);
  const auto rule = std::find_if(rules_.rbegin(), rules_.rend(), [command](const Rule& candidate) {
    return command.starts_with(candidate.command);
  });
  const Reply& reply = rule->replies[std::min(rule->next++, rule->replies.size() - 1)];
  return reply(command);
}

}  // namespace bench

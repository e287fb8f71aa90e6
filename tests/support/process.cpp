#include "support/process.h"

#include <utility>

namespace {

// Up to this text; without one to the end.
std::string Read(std::FILE *stream, const std::string &until = "") {
  std::string text;
  for (int c; (until.empty() || !text.ends_with(until)) && (c = std::getc(stream)) != EOF;)
    text += static_cast<char>(c);
  return text;
}

}  // namespace

Process::Process(const std::vector<std::string> &words) { Start(words); }

Process::~Process() {
  if (id_ != 0) Finish();
  std::fclose(out_);
  std::fclose(err_);
}

bool Process::ReadErrorsUntil(const std::string &text) { return Read(err_, text).ends_with(text); }

Result Process::Finish() {
  Result result{-1, "", Read(err_)};
  result.status = Wait();
  id_ = 0;
  std::rewind(out_);
  result.out = Read(out_);
  return result;
}

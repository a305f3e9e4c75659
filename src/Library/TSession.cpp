#include <kiln/kiln.h>

#include <algorithm>

#include "Interpreter/TInterpreter.h"
#include "Shared/Say.h"
#include "Shared/TTeam.h"

namespace kiln {

class TSession::TImplementation : public TInterpreter {};

TSession::TSession() : implementation_(std::make_unique<TImplementation>()) {}

TSession::~TSession() = default;
TSession::TSession(TSession&& other) noexcept = default;
TSession& TSession::operator=(TSession&& other) noexcept = default;

TSession::TReply TSession::Execute(std::string_view command) {
  const int code = implementation_->Execute(command);
  if (code < 0) return {false, implementation_->GetError()};
  return {true, code > 0 ? implementation_->GetResult() : std::string()};
}

void TSession::BeStrict() {
  implementation_->BeStrict();
}

void TSession::SetObserver(TObserver observer) {
  implementation_->SetObserver(std::move(observer));
}

void TSession::SetListener(TListener listener) {
  if (!listener) return HaveSaid({});
  HaveSaid([listener = std::move(listener)](std::string_view text, TSaying saying) {
    if (saying == TSaying::kLine) listener(text);
  });
}

void TSession::SetThreads(int threads) {
  TTeam::SetWorkers(
      static_cast<std::size_t>(std::clamp(threads, 1, static_cast<int>(TTeam::kMaxWorkers))));
}

std::string_view Version() {
  return KILN_VERSION;
}

}  // namespace kiln

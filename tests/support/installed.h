// A double that is the process's service while it lives.
#pragma once

namespace kerno::test {

// `kReplace` installs a service and answers the one before (ReplaceClock and its fellows).
template <class Service, Service* (*kReplace)(Service*)>
class Installed : public Service {
 public:
  Installed(const Installed&) = delete;
  Installed& operator=(const Installed&) = delete;

 protected:
  Installed() : before_(kReplace(this)) {}
  ~Installed() override { kReplace(before_); }

 private:
  Service* before_;
};

}  // namespace kerno::test

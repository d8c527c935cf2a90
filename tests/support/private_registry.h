// A registry that is empty at the start and gone at the end.
#pragma once

namespace kerno::test {

// Where the registry is a file it lies in the fixture's own folder and nothing is to be done.
class PrivateRegistry {
 public:
  PrivateRegistry();
  ~PrivateRegistry();
  PrivateRegistry(const PrivateRegistry&) = delete;
  PrivateRegistry& operator=(const PrivateRegistry&) = delete;
};

}  // namespace kerno::test

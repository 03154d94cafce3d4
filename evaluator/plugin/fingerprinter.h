// What a registration says its result depends on. The evaluator learns it by calling the
// registration's fingerprint function, never by the function's address: each plug-in has a copy.
#pragma once

class Fingerprinter {
 public:
  void RecordParametersOnly() { parameters_only_ = true; }

  // The result depends on the arguments alone, so one evaluation serves for all.
  bool IsParametersOnly() const { return parameters_only_; }

 private:
  bool parameters_only_ = false;
};

using FingerprintFunction = void (*)(Fingerprinter&);

inline void DependsOnlyOnParameters(Fingerprinter& fingerprinter) {
  fingerprinter.RecordParametersOnly();
}

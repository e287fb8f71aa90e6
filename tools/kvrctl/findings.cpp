#include "findings.h"

#include <algorithm>

namespace kvrctl {

Findings Diagnose(const Survey &survey) {
  const View view(survey);
  Findings findings;
  CheckReach(view, findings);
  CheckRoles(view, findings);
  CheckPools(view, findings);
  CheckSameness(view, findings);
  CheckDamage(view, findings);
  std::stable_partition(findings.begin(), findings.end(),
                        [](const Finding &finding) { return finding.wrong; });
  return findings;
}

}  // namespace kvrctl

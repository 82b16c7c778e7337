// The CDDB client on libcddb: disc identifier, query (first match) and read
// of the match's record, over HTTP or CDDBP, with libcddb's cache off and
// its log quiet (failures come back in the answer).
#pragma once

#include "platform/cd/CddbClient.h"

namespace cd {

class LibCddbClient : public CddbClient {
  public:
    CddbAnswer Lookup(const CdToc& toc, const CddbServer& server) override;
};

}  // namespace cd

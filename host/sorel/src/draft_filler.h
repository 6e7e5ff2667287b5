// Gives made objects the properties that their drafts have.
#ifndef SOREL_DRAFT_FILLER_H
#define SOREL_DRAFT_FILLER_H

#include "drafts.h"

namespace sorel {

// All drafts of the batch have their objects, which the caller keeps alive. Engine lock; the thread that has drafts.
void FillDrafts(JSContextRef context, const DraftBatch& batch);

}  // namespace sorel

#endif

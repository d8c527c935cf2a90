// Assistive technology meets what is shown, and nothing that is hidden.
#pragma once

namespace kerno {

// Called once, before the first window.
void OfferShownChildrenOnly();

}  // namespace kerno

// The headphones mixer's registry rows, in the order its controls appear:
// the deck levels, the plots and their buttons, the volume, the cross fader
// and the balances with the separate-ears button.
#pragma once

class CRynHeadphonesMixer;

void RegisterHeadphonesMixerComponents(CRynHeadphonesMixer& mixer);

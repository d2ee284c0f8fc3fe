// Releases everything the reader attached to a link configuration: comment
// texts, alias and description copies, and the MLP subsection records.
#pragma once

#include "qx25.h"

namespace qx25tool {

void release(link_section *link);
void release(x25_section *x25);
void release(lapb_section *lapb);
void release(llc2_section *llc2);
void release(wan_section *wan);
void release(mlp_section *mlp); // its subsection records too
void release(link_config *config);
// A chain of link nodes as link discovery or the import built it: each
// node's texts and circuits, then the node.
void release(link_node *head);

} // namespace qx25tool

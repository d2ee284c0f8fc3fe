#include "release.h"

#include "link_config.h"

#include <cstdlib>

namespace qx25tool {

namespace {

template <typename Section> void release_pairs(Section *section) {
    if (section == nullptr) return;
    std::free(section->section.comments);
    std::free(section->section.trailer);
    section->section = {};
    for (config_comment &pair : section->keyword) {
        std::free(pair.comments);
        std::free(pair.trailer);
        pair = {};
    }
}

} // namespace

void release(link_section *link) {
    if (link == nullptr) return;
    release_pairs(link);
    std::free(link->values.subnet.name);
    std::free(link->values.subnet.description);
    link->values.subnet.name = link->values.subnet.description = nullptr;
}

void release(x25_section *x25) {
    release_pairs(x25);
}
void release(lapb_section *lapb) {
    release_pairs(lapb);
}
void release(llc2_section *llc2) {
    release_pairs(llc2);
}
void release(wan_section *wan) {
    release_pairs(wan);
}

void release(mlp_section *mlp) {
    if (mlp == nullptr) return;
    release_pairs(mlp);
    for (lapb_section *&lapb : mlp->values.lapb) {
        release(lapb);
        std::free(lapb);
        lapb = nullptr;
    }
    for (wan_section *&wan : mlp->values.wan) {
        release(wan);
        std::free(wan);
        wan = nullptr;
    }
}

void release(link_config *config) {
    release(&config->link);
    release(&config->x25);
    release(&config->mlp);
    release(&config->lapb);
    release(&config->llc2);
    release(&config->wan);
}

void release(link_node *head) {
    while (head != nullptr) {
        link_node *next = head->next;
        __release_link_section(&head->link);
        std::free(head);
        head = next;
    }
}

} // namespace qx25tool

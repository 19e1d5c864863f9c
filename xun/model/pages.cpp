#include "xun/model/pages.h"

#include "xun/model/template.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"

namespace xun {

std::shared_ptr<clsXUNPages> clsXUNPages::Create() {
  return MakeObject<clsXUNPages>();
}

bool clsXUNPages::Move(const Index& index, std::optional<Index> Before,
                       std::optional<Index> After) {
  return Trap("clsXUNPages.Move", false, [&] {
    if (!Before && !After) return false;
    if (Before && !items_.Exists(*Before)) return false;
    if (After && !items_.Exists(*After)) return false;
    if (!items_.Exists(index)) return false;
    std::shared_ptr<clsXUNPage> page = items_.Take(index);
    // The anchors were checked with the page still in the list but apply without it: positions
    // shift, and naming the page itself now fails and leaves it out. Callers rely on both.
    items_.Add(page, SharedFrom(this), Before, After);
    return true;
  });
}

bool clsXUNPages::Add(const std::shared_ptr<clsXUNPage>& oPage, std::optional<Index> Before,
                      std::optional<Index> After) {
  return Trap("clsXUNPages.Add", false, [&] {
    if (!oPage) Raise(kErrObjectNotSet);
    // Exactly 0 means "not chosen": such a page takes the template's width as it joins.
    if (const std::shared_ptr<clsXUNTemplate> owner = Template();
        owner && oPage->ColumnWidth() == 0)
      oPage->ColumnWidth(owner->ColumnWidth());
    items_.Add(oPage, SharedFrom(this), Before, After);
    return true;
  });
}

bool clsXUNPages::Remove(const Index& index) {
  return Trap("clsXUNPages.Remove", false, [&] {
    const std::shared_ptr<clsXUNPage> page = items_.Find(index);
    if (!page) return false;
    page->Free();
    items_.Take(index);
    return true;
  });
}

bool clsXUNPages::RemoveAll() {
  return Trap("clsXUNPages.Remove", false, [&] {
    for (int32_t position = Count(); position >= 1; --position)
      Remove(position);
    return Count() == 0;
  });
}

std::shared_ptr<clsXUNPage> clsXUNPages::Item(const Index& index) const {
  return Trap("clsXUNPages.Item", std::shared_ptr<clsXUNPage>(),
              [&] { return items_.Find(index); });
}

void clsXUNPages::Free() {
  Trap("clsXUNPages.Free", [&] {
    RemoveAll();
    template_.reset();
  });
}

}  // namespace xun

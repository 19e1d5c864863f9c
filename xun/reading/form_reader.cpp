#include "xun/reading/form_reader.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <map>
#include <optional>

#include "engine/engine_error.h"
#include "engine/grid_check.h"
#include "engine/image_file.h"
#include "engine/xunrec.h"
#include "xun/reading/identification.h"
#include "xun/reading/page_registration.h"
#include "xun/reading/reading_plan.h"
#include "xun/reading/region_reading.h"
#include "xun/reading/review_list.h"
#include "xun/reading/scanned_page.h"

namespace xun::reading {
namespace {

using detail::PagePlan;

std::string EngineMessage(int16_t code) {
  switch (code) {
    case XUNREC_FILE_NOT_FOUND:
      return "no such file";
    case XUNREC_NOT_AN_IMAGE:
      return "not a TIFF, PNG, JPEG, PCX or DCX image, or a damaged one";
    case XUNREC_IMAGE_TOO_LARGE:
      return "the image is too large";
    case XUNREC_OUT_OF_MEMORY:
      return "out of memory";
    default:
      return "the image could not be read (code " + std::to_string(code) + ")";
  }
}

// Every printed bubble's net fill on the registered scan: its fill where the fit puts it, less
// the fill of the blank printed bubble. `placed` gets where each lies on the image.
std::vector<int16_t> NetFills(const detail::ScannedPage& page, const detail::PageFit& fit,
                              const PagePlan& plan, std::vector<cv::Rect2d>& placed) {
  std::vector<int16_t> fills(plan.printed.centres.size(), 0);
  placed.assign(fills.size(), {});
  for (const auto& [first, count] : plan.regions) {
    const cv::Point2d middle = plan.printed.centres[static_cast<size_t>(first)];
    const cv::Size2d per_unit = fit.ScaleAt(middle);
    const cv::Size2d size = plan.printed.sizes[static_cast<size_t>(first)];
    std::vector<cv::Point2d> centres;
    for (int i = first; i < first + count; ++i)
      centres.push_back(fit.Map(plan.printed.centres[static_cast<size_t>(i)]));
    const cv::Size2d bubble(size.width * per_unit.width, size.height * per_unit.height);
    const std::vector<int16_t> region = page.FillPercents(centres, bubble);
    for (int i = 0; i < count; ++i) {
      const size_t at = static_cast<size_t>(first + i);
      const cv::Point2d& centre = centres[static_cast<size_t>(i)];
      placed[at] = cv::Rect2d(centre.x, centre.y, bubble.width, bubble.height);
      fills[at] =
          static_cast<int16_t>(std::max(0, region[static_cast<size_t>(i)] - plan.blank_fills[at]));
    }
  }
  return fills;
}

// The answers of a page's items, hidden identification questions too, in the plan's order.
void AnswerItems(const PagePlan& plan, int32_t page, const std::vector<BubbleRead>* reads,
                 const std::vector<std::vector<detail::RegionValue>>& regions,
                 const std::string& why, std::vector<ItemAnswer>& answers) {
  std::vector<AnswerValue> values;
  std::vector<std::string> clips(plan.items.size());
  for (const detail::ItemPlan& item : plan.items) {
    if (!reads) {
      values.push_back(ErrorAnswer(item.rules, why));
      continue;
    }
    if (item.image_region >= 0 && static_cast<size_t>(item.image_region) < regions.size() &&
        static_cast<size_t>(item.part) < regions[static_cast<size_t>(item.image_region)].size()) {
      const auto& value =
          regions[static_cast<size_t>(item.image_region)][static_cast<size_t>(item.part)];
      clips[values.size()] = value.clip;
      values.push_back(detail::AnswerFrom(item.rules, value));
      continue;
    }
    if (item.lines.empty()) {
      values.push_back(ErrorAnswer(item.rules, "regions of this kind are not read yet"));
      continue;
    }
    std::vector<std::vector<BubbleRead>> lines;
    for (const auto& line : item.lines) {
      std::vector<BubbleRead>& out = lines.emplace_back();
      for (int i : line)
        out.push_back((*reads)[static_cast<size_t>(i)]);
    }
    values.push_back(AnswerOf(item.rules, lines));
  }
  // Duplicate ranks, region by region.
  std::map<int32_t, std::vector<size_t>> rank_groups;
  for (size_t i = 0; i < plan.items.size(); ++i)
    if (plan.items[i].rank_group >= 0) rank_groups[plan.items[i].rank_group].push_back(i);
  for (const auto& [group, members] : rank_groups) {
    std::vector<QuestionRules> rules;
    std::vector<AnswerValue> group_values;
    for (size_t i : members) {
      rules.push_back(plan.items[i].rules);
      group_values.push_back(values[i]);
    }
    MarkDuplicateRanks(rules, group_values);
    for (size_t k = 0; k < members.size(); ++k)
      values[members[k]] = group_values[k];
  }
  for (size_t i = 0; i < plan.items.size(); ++i) {
    ItemAnswer answer;
    answer.item = plan.items[i].item;
    answer.name = plan.items[i].name;
    answer.page = page;
    answer.value = std::move(values[i].value);
    answer.status = values[i].status;
    answer.confidence = values[i].confidence;
    answer.why = std::move(values[i].why);
    answer.clip = std::move(clips[i]);
    answers.push_back(std::move(answer));
  }
}

// What names a form's clips: its first page's file name without folder or extension, and the
// page's number in the file when it is not the first (forms of one multi-page file).
std::string ClipStem(const ScanPage& first) {
  const std::string stem = std::filesystem::path(first.file).stem().string();
  return first.frame > 0 ? stem + "_" + std::to_string(first.frame + 1) : stem;
}

// The value page `page`'s page ID question reads on an outcome: nothing unless it was registered
// and the value is clear.
std::optional<std::string> PageIDRead(const detail::ReadingPlan& plans, size_t page,
                                      const PageOutcome& outcome) {
  if (!outcome.page.registered) return std::nullopt;
  const PagePlan& plan = plans.pages[page];
  for (size_t k = 0; k < plan.items.size(); ++k)
    if (plan.items[k].id_type == xunIDTypePage)
      return outcome.answers[k].status == AnswerStatus::Clear
                 ? std::optional(outcome.answers[k].value)
                 : std::nullopt;
  return std::nullopt;
}

}  // namespace

void SetImageThreads(int threads) {
  cv::setNumThreads(threads > 0 ? threads : -1);
}

FormReader::FormReader(const clsXUNTemplate& form, MarkThresholds thresholds, ReadOptions options)
    : plan_(std::make_unique<detail::ReadingPlan>(detail::PlanOf(form))),
      thresholds_(thresholds),
      options_(std::move(options)) {}

FormReader::~FormReader() = default;

int32_t FormReader::NumPages() const {
  return static_cast<int32_t>(plan_->pages.size());
}

FormRecord FormReader::Read(const std::vector<std::string>& images) const {
  return ReadPages(PagesOf(images));
}

// One scanned page read as one page of the form: its registration, bubbles and answers.
PageOutcome FormReader::ReadPage(const ScanPage* scan, size_t p,
                                 const std::string& clip_stem) const {
  const PagePlan& plan = plan_->pages[p];
  PageOutcome out;
  PageReading& page = out.page;
  page.page = static_cast<int32_t>(p + 1);
  page.bubbles_printed = static_cast<int32_t>(plan.printed.centres.size());
  std::vector<BubbleRead> reads;
  std::vector<std::vector<detail::RegionValue>> regions;
  bool read = false;
  if (!scan) {
    page.error = "no image for this page";
  } else {
    page.image = scan->file;
    page.frame = scan->frame;
    try {
      cv::Mat grey = xunrec::DecodeGrey(scan->file, scan->frame);
      // The resolution is the page's size on the image: a scan is the whole page, whatever
      // resolution its file claims (the fit takes up a few percent of difference).
      const double xdpi = grey.cols * 100.0 / plan_->page_width;
      const double ydpi = grey.rows * 100.0 / plan_->page_height;
      const detail::ScannedPage scanned(std::move(grey),
                                        std::max(1, static_cast<int>(std::max(xdpi, ydpi) + 0.5)));
      std::string why;
      const auto registration = detail::RegisterPage(scanned, xdpi, ydpi, plan, why);
      if (!registration) {
        page.error = "not registered: " + why;
      } else {
        const detail::PageFit* fit = &registration->fit;
        page.registered_by = registration->by;
        page.registered = true;
        page.model = fit->model;
        page.fit_error = fit->error;
        page.bubbles_found = fit->found;
        page.bubbles_printed = fit->printed;
        std::vector<cv::Rect2d> placed;
        const std::vector<int16_t> nets = NetFills(scanned, *fit, plan, placed);
        for (size_t i = 0; i < nets.size(); ++i) {
          reads.push_back(Judge(nets[i], thresholds_));
          page.bubbles.push_back({plan.ids[i].region, plan.ids[i].row, plan.ids[i].col, nets[i],
                                  reads.back().state, plan.item_of[i], placed[i].x, placed[i].y,
                                  placed[i].width, placed[i].height});
        }
        regions = detail::ReadRegions(plan, scanned.Grey(), *fit, options_, {clip_stem, page.page});
        read = true;
      }
    } catch (const xunrec::EngineError& e) {
      page.error = EngineMessage(e.Code());
    } catch (const std::exception& e) {
      page.error = e.what();
    }
  }
  AnswerItems(plan, page.page, read ? &reads : nullptr, regions,
              "page " + std::to_string(page.page) + " " +
                  (page.error.empty() ? std::string("was not read") : page.error),
              out.answers);
  return out;
}

FormRecord FormReader::ReadPages(const std::vector<ScanPage>& images) const {
  FormRecord record;
  for (const ScanPage& scan : images)
    if (record.images.empty() || record.images.back() != scan.file)
      record.images.push_back(scan.file);
  const size_t pages = plan_->pages.size();
  if (images.size() != pages)
    record.error = std::to_string(images.size()) + (images.size() == 1 ? " page" : " pages") +
                   " scanned for a form of " + std::to_string(pages) +
                   (pages == 1 ? " page" : " pages");
  const std::string stem = images.empty() ? std::string() : ClipStem(images.front());
  // Each scanned page is read as the page it stands for; then, when the pages carry page IDs, as
  // the page its ID names if the pages came in another order.
  std::map<std::pair<size_t, size_t>, PageOutcome> tried;
  const auto attempt = [&](size_t image, size_t page) -> const PageOutcome& {
    auto at = tried.find({image, page});
    if (at == tried.end())
      at = tried.emplace(std::pair{image, page}, ReadPage(&images[image], page, stem)).first;
    return at->second;
  };
  std::vector<size_t> order;
  std::vector<std::string> page_ids;
  for (const PagePlan& plan : plan_->pages)
    for (const detail::ItemPlan& item : plan.items)
      if (item.id_type == xunIDTypePage) {
        page_ids.push_back(item.id_value);
        break;
      }
  if (images.size() == pages && page_ids.size() == pages && pages > 1)
    order = detail::PageOrder(page_ids, [&](size_t image, size_t page) {
      return PageIDRead(*plan_, page, attempt(image, page));
    });
  for (size_t p = 0; p < pages; ++p) {
    const size_t image = order.empty() ? p : order[p];
    PageOutcome outcome = image < images.size() ? attempt(image, p) : ReadPage(nullptr, p, stem);
    const PagePlan& plan = plan_->pages[p];
    for (size_t k = 0; k < plan.items.size(); ++k) {
      const detail::ItemPlan& item = plan.items[k];
      if (item.id_type != 0)
        record.identification.push_back(
            {item.id_type, item.id_value, item.item > 0, item.region, outcome.answers[k]});
      if (item.item > 0) record.answers.push_back(std::move(outcome.answers[k]));
    }
    record.pages.push_back(std::move(outcome.page));
  }
  std::stable_sort(record.answers.begin(), record.answers.end(),
                   [](const ItemAnswer& a, const ItemAnswer& b) { return a.item < b.item; });
  detail::Identify(record);
  detail::ListForReview(record);
  return record;
}

}  // namespace xun::reading

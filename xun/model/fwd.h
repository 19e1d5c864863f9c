// Forward declarations of the object model's classes.
#pragma once

#include <memory>

namespace xun {

class clsXUNTemplate;
class clsXUNPages;
class clsXUNPage;
class clsXUNFields;
class clsXUNField;
class clsXUNFieldDB;
class clsXUNQuestions;
class clsXUNQuestion;
class clsXUNBubbles;
class clsXUNBubble;
class clsXUNTimingMarks;
class clsXUNTimingMark;
class clsXUNStringItems;
class clsXUNFieldExtra;

}  // namespace xun

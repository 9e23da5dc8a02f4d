// Exceptions, and assertions.
#include <list>
#include <memory>
#include <stdexcept>
#include <utility>

#include "qilsys/LogicException.h"
#include "qilsys/QuillonException.h"
#include "qilsys/TFormatStringCore.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {
namespace {

using Text = TStringCore;

constexpr Leave Lists{Raises::Standard, Left::Unchanged, "messages are lists of the standard library"};
constexpr Leave ListsAndTexts{Raises::Either, Left::Unchanged, Lists.reason};

constexpr Leave LocalText{Raises::Either, Left::Unchanged, "a converter of ICU that can't be opened gives empty text",
                          Result::Another};

/// Exceptions with messages, and what new ones are made of.
struct Exceptions {
  explicit Exceptions(Shape shape) : message(shape == Shape::Inline ? u"short" : u"a message that needs a block") {
    if (shape == Shape::SharedBlock) peer = message;
    exception.StackMessage(TFormatStringCore(u"a template that needs a block"));
    other.StackMessage(u"another message that needs a block");
    other.StackMessage(u"one more");
  }
  std::string Observe() const {
    Observed seen;
    AddException(seen, exception);
    AddException(seen, other);
    AddException(seen, logic);
    AddException(seen, otherLogic);
    if (made) AddException(seen, *made);
    return seen.Add(logic.GetInternalMessage()).Add(peer).Add(text).AddAll(texts).Bytes();
  }
  static void AddException(Observed& seen, const QuillonException& exception) {
    seen.AddAll(exception.GetMessages()).AddAll(exception.GetRedactedMessages());
    seen.Add(exception.GetErrorCode()).Add(exception.GetErrorName()).Add(exception.GetErrorSource());
  }

  Text message;
  Text peer;
  TError::ErrorInfo info{QuillonError::MakeError(7, u"A_Name_That_Needs_A_Block"), TError::Content,
                         grpc::StatusCode::ABORTED};
  TFormatStringCore format{u"a template of more than fourteen units"};
  std::list<Text> messages{u"one, which needs a block", u"two"};
  std::runtime_error standard{"words of the standard library"};
  QuillonException exception{u"a first message that needs a block", info};
  QuillonException other;
  LogicException logic{Text(u"an internal message that needs a block\n"), info};
  LogicException otherLogic{Text(u"another internal message that needs a block"), info};
  std::unique_ptr<QuillonException> made;
  Text text;
  std::vector<Text> texts;
};

/// Keeps a new exception as the result.
template <class Exception, class... Arguments>
void Make(Exceptions& e, const Arguments&... arguments) {
  e.made = std::make_unique<Exception>(arguments...);
}

constexpr Row<Exceptions> Making[] = {
    {"QuillonException", [](Exceptions& e) { Make<QuillonException>(e); }, Lists},
    {"QuillonException_Info", [](Exceptions& e) { Make<QuillonException>(e, e.info); }, Lists},
    {"QuillonException_Text", [](Exceptions& e) { Make<QuillonException>(e, e.message); }, Lists},
    {"QuillonException_TextAndInfo", [](Exceptions& e) { Make<QuillonException>(e, e.message, e.info); }, Lists},
    {"QuillonException_Format", [](Exceptions& e) { Make<QuillonException>(e, e.format); }, ListsAndTexts},
    {"QuillonException_FormatAndInfo", [](Exceptions& e) { Make<QuillonException>(e, e.format, e.info); },
     ListsAndTexts},
    {"QuillonException_List", [](Exceptions& e) { Make<QuillonException>(e, e.messages); }, Lists},
    {"QuillonException_ListAndInfo", [](Exceptions& e) { Make<QuillonException>(e, e.messages, e.info); }, Lists},
    {"QuillonException_Standard",
     [](Exceptions& e) { Make<QuillonException>(e, static_cast<const std::exception&>(e.standard)); }, LocalText},
    {"QuillonException_StandardAndInfo",
     [](Exceptions& e) { Make<QuillonException>(e, static_cast<const std::exception&>(e.standard), e.info); },
     LocalText},
    {"QuillonException_Copy", [](Exceptions& e) { Make<QuillonException>(e, e.exception); }, Lists},
    {"OutOfMemory_Info", [](Exceptions& e) { Make<QuillonOutOfMemoryException>(e, e.info); }, Lists},
    {"OutOfMemory_Text", [](Exceptions& e) { Make<QuillonOutOfMemoryException>(e, e.message, e.info); }, Lists},
    {"OutOfMemory_List", [](Exceptions& e) { Make<QuillonOutOfMemoryException>(e, e.messages, e.info); }, Lists},
    {"UserError_Text", [](Exceptions& e) { Make<QuillonUserErrorException>(e, e.message, e.info); }, Lists},
    {"UserError_Format", [](Exceptions& e) { Make<QuillonUserErrorException>(e, e.format, e.info); }, ListsAndTexts},
    {"Logic_TextAndInfo", [](Exceptions& e) { Make<LogicException>(e, e.message, e.info); }, ListsAndTexts},
    {"Logic_TextAndError", [](Exceptions& e) { Make<LogicException>(e, e.message, e.info.GetQuillonError()); },
     ListsAndTexts},
    {"Logic_FormatAndInfo", [](Exceptions& e) { Make<LogicException>(e, e.format, e.info); }, ListsAndTexts},
    {"Logic_FormatAndError", [](Exceptions& e) { Make<LogicException>(e, e.format, e.info.GetQuillonError()); },
     ListsAndTexts},
    {"Logic_List", [](Exceptions& e) { Make<LogicException>(e, e.messages, e.message); }, ListsAndTexts},
    {"Logic_Copy", [](Exceptions& e) { Make<LogicException>(e, e.logic); }, Lists},
};

constexpr Row<Exceptions> Changing[] = {
    {"QuillonException_Assign", [](Exceptions& e) { e.exception = e.other; }, Lists},
    {"Logic_Assign", [](Exceptions& e) { e.logic = e.otherLogic; }, Lists},
    {"SetMessage_Text", [](Exceptions& e) { e.exception.SetMessage(e.message); }, Lists},
    {"SetMessage_Format", [](Exceptions& e) { e.exception.SetMessage(e.format); }, ListsAndTexts},
    {"StackMessage_Text", [](Exceptions& e) { e.exception.StackMessage(e.message); }, Lists},
    {"StackMessage_Format", [](Exceptions& e) { e.exception.StackMessage(e.format); }, ListsAndTexts},
    {"StackMessageFront_Text", [](Exceptions& e) { e.exception.StackMessageFront(e.message); }, Lists},
    {"StackMessageFront_Format", [](Exceptions& e) { e.exception.StackMessageFront(e.format); }, ListsAndTexts},
    {"ClearMessages", [](Exceptions& e) { e.exception.ClearMessages(); }},
};

/// Throws the exception and keeps what arrives.
void KeepThrown(Exceptions& e, const QuillonException& exception) {
  try {
    exception.Throw();
  } catch (const QuillonException& thrown) {
    e.made.reset(thrown.Clone());
  }
}

constexpr Row<Exceptions> Reading[] = {
    {"QuillonException_Clone", [](Exceptions& e) { e.made.reset(e.exception.Clone()); }, Lists},
    {"Logic_Clone", [](Exceptions& e) { e.made.reset(e.logic.Clone()); }, Lists},
    {"QuillonException_Throw", [](Exceptions& e) { KeepThrown(e, e.exception); }, Lists},
    {"Logic_Throw", [](Exceptions& e) { KeepThrown(e, e.logic); }, Lists},
    {"GetConcatenatedMessages", [](Exceptions& e) { e.text = e.exception.GetConcatenatedMessages(); }},
    {"GetMessagesFront", [](Exceptions& e) { e.text = e.exception.GetMessagesFront(); }},
    {"CollateMessagesForLog", [](Exceptions& e) { e.text = e.exception.CollateMessagesForLog(); }},
    {"Logic_CollateMessagesForLog", [](Exceptions& e) { e.text = e.logic.CollateMessagesForLog(); }, ListsAndTexts},
    {"GetMessagesVector", [](Exceptions& e) { e.texts = e.exception.GetMessagesVector(); }, Lists},
    {"ToString",
     [](Exceptions& e) { QuillonException::ToString(static_cast<const std::exception&>(e.standard), e.text); },
     {Raises::Own, Left::Unchanged, LocalText.reason, Result::Another}},
};

constexpr Row<Exceptions> InFlight[] = {
    {"StackExceptionAndRethrow_Text",
     [](Exceptions& e) {
       try {
         try {
           throw QuillonException(e.exception);
         } catch (const QuillonException&) {
           StackExceptionAndRethrow(e.message);
         }
       } catch (const QuillonException& thrown) {
         e.made.reset(thrown.Clone());
       }
     },
     Lists},
    {"StackExceptionAndRethrow_Format",
     [](Exceptions& e) {
       try {
         try {
           throw QuillonException(e.exception);
         } catch (const QuillonException&) {
           StackExceptionAndRethrow(e.format);
         }
       } catch (const QuillonException& thrown) {
         e.made.reset(thrown.Clone());
       }
     },
     ListsAndTexts},
    {"ThrowLogicException_WithAHook",
     [](Exceptions& e) {
       AssertHooks::SetLogicAssertHook([](const char*, int, const char*, const QuillonError&) {});
       ThrowLogicException("file", 1, "message", e.info.GetQuillonError());
     }},
    {"ThrowLogicException_WithoutAnError",
     [](Exceptions&) {
       AssertHooks::SetLogicAssertHook([](const char*, int, const char*, const QuillonError&) {});
       ThrowLogicException("file", 1, "message");
     }},
    {"InjectLookupTStr", [](Exceptions&) { InjectLookupTStr([](unsigned int) { return Text(u"Internal error."); }); }},
    {"String_Exception", [](Exceptions& e) { e.text = Text::Exception(e.message).CollateMessagesForLog(); }},
    {"String_ExceptionClone",
     [](Exceptions& e) {
       const std::unique_ptr<Text::Exception> clone(Text::CapacityException().Clone());
       e.text = clone->GetConcatenatedMessages();
     },
     ListsAndTexts},
};

}  // namespace

void AddExceptions(std::vector<Operation>& operations) {
  AddRows<Exceptions>(operations, Making);
  AddRows<Exceptions>(operations, Changing);
  AddRows<Exceptions>(operations, Reading);
  AddRows<Exceptions>(operations, InFlight);
}

}  // namespace qilsys::test::sweep

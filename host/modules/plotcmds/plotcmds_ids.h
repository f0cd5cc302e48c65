#pragma once

// Numbers of this module's dialogs and texts; the controls of a dialog stand beside its class.
namespace plotcmds {

enum DialogId : int {
    kProgressDialog = 10101,
    kPrintDialog = 10102,
    kPublishDialog = 10103,
    kStampDialog = 10104,
    kPageSetupDialog = 10105,
    kPdfOptionsDialog = 10106,
};

enum TextId : int {
    kNothingToPublish = 23800,
    kNoPageSetups = 23801,
    kPublishTo = 23802,
    kPublishFolder = 23803,
    kPublishing = 23804,
    kSheetOf = 23805,
    kFinished = 23806,
    kFinishedWithFailures = 23807,
    kWasCancelled = 23808,
    kHasFailed = 23809,
    kOpen = 23810,
    kClose = 23811,
    kFailureLine = 23812,
    kCancelling = 23814,
    kSentTo = 23815,
    kNotPrinted = 23816,
    kColumnNumber = 23832,
    kColumnTitle = 23833,
    kColumnLayout = 23834,
    kColumnDrawing = 23835,
    kAsOnePdf = 23837,
    kAsPdfs = 23838,
    kAsSvgs = 23839,
    kAsPrinter = 23840,
    kFirstCorner = 23860,
    kExample = 23865,
    kNothing = 23866,
    kSetupsOf = 23870,
    kNoSetups = 23873,
    kPaperLine = 23874,
    kPrinterLine = 23875,
    kAreaLine = 23876,
    kFits = 23877,
    kScaleLine = 23878,
    kStyleLine = 23879,
    kAreaDisplay = 23880,
    kAreaView = 23883,
    kNone = 23886,
    kIsOpen = 23887,
    kPlotCommand = 23900,
    kPlotTo = 23901,
    kPlotWritten = 23902,
    kNoDrawing = 23903,
};

} // namespace plotcmds

#include "frame/host/api.h"
#include "frame/host/context.h"
#include "frame/host/exchange.h"
#include "frame/host/filesys.h"
#include "frame/host/translate.h"
#include "operations/methods.h"

namespace qn::graph {
namespace {

constexpr const char* kCatalogue = "assembly";
constexpr const char* kMessageKind = "XMSG: Error message";
constexpr int kErrorLevel = 2;
constexpr const char* kNoOutputFile = "Output file name for metadata file must be specified";
constexpr const char* kNoBlobFolder = "Output folder name for metadata blob files must be specified";
constexpr PathSizes kSizes{3, 0x104, 0x100, 0x100};

void Report(Context* context, const char* text) {
    if (context)
        context->ReportMessage(MessageInfo(kErrorLevel), Translate(kCatalogue, text, kMessageKind, -1));
}

/// The folder that is to hold the file; empty if its path names none.
String FolderOf(const String& file) {
    const PathPieces pieces = SplitPath(file, kSizes);
    String folder = pieces.drive + pieces.folder;
    folder.AddSlash();
    return folder;
}

/// Makes the folders that the export writes to; what is not named is reported.
int PrepareFolders(const String& outputFile, const String& blobFolder, Context* context) {
    int result = MethodResult::kRefused;
    if (outputFile.IsEmpty()) {
        Report(context, kNoOutputFile);
        result = MethodResult::kIncomplete;
    } else {
        filesys::CreateFolder(FolderOf(outputFile));
    }
    if (blobFolder.IsEmpty()) {
        Report(context, kNoBlobFolder);
        result = MethodResult::kIncomplete;
    } else {
        filesys::CreateFolder(blobFolder);
    }
    return result;
}

}  // namespace

int ExportMetadataMethod(const MethodCall& call) {
    const String outputFile = call.arguments.Text(1), blobFolder = call.arguments.Text(2);
    const bool topLevelOnly = call.arguments.Bool(3);
    const auto exporter = CreateAs<qfxml::BrineServerMetadataExport>(qfxml::ExchangeKey::kMetadataExport);
    if (!exporter) return MethodResult::kRefused;
    const int prepared = PrepareFolders(outputFile, blobFolder, call.context);
    // The export runs after a report, too, and its success outweighs it.
    return exporter->Export(call.scene, outputFile, blobFolder, topLevelOnly, call.context)
               ? MethodResult::kDone
               : prepared;
}

}  // namespace qn::graph

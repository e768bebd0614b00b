// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/PcaCommand.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "services/analysis/AnalysisSetUp.h"
#include "services/analysis/PcaRun.h"
#include "services/basis/Failure.h"
#include "services/results/PcaFiles.h"
#include "services/results/StagedRun.h"
#include "windows/maskPixels.h"
#include "workbench/commands/AnalysisOptions.h"
#include "workbench/commands/CliProgress.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"

namespace {

// The run takes a mask in any case: the pixels that were told, or every one where no mask is asked for, at the binning
// of the analysis, so that its bytes are those pixels.
void maskTakenPixels(CORVSpumKyvo& engine)
{
    CILImage mask;
    if (mask.InitWithType(ORVTYPE_FLOAT, engine.m_nWidth, engine.m_nHeight) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    mask.setConstData(engine.m_maskIndices.empty() ? 1.0 : 0.0);
    for (const int nPixel : engine.m_maskIndices) {
        mask.floats()[nPixel] = 1.0F;
    }
    mask.m_fBinning = static_cast<float>(engine.m_nBinning);
    engine.m_analysisInput.maskImage = mask;
}

} // namespace

void PcaCommand::declare(CommandParser& parser) const
{
    declareImageOptions(parser, QStringLiteral("Without it: auto where a camera took the photograph, else none."));
    declarePlaces(parser, QStringLiteral("SEQ/pca"));
    parser.addOption({QStringLiteral("force"), QStringLiteral("Replace earlier results in that folder.")});
}

QList<CommandManual::Example> PcaCommand::examples() const
{
    return {
        {QStringLiteral("spum pca mouse"),
         QStringLiteral("How many components explain how much of the images; pictures and tables go to mouse/pca.")}};
}

void PcaCommand::check(const QCommandLineParser& parser) const
{
    analysisRequestOf(parser, name(), MaskRequest::Kind::Photograph);
}

void PcaCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    const AnalysisRequest request = analysisRequestOf(parser, name(), MaskRequest::Kind::Photograph);
    AnalysisSetUp setUp(request, session);
    session.startProgress(QStringLiteral("Looking at the images"));
    setUp.checkMode(RUNMODE_AUTOMATIC);
    StagedRun staged(setUp.outPlace(QStringLiteral("pca")), request.force, QStringLiteral("pca.json"));
    setUp.select();
    setUp.reset(RUNMODE_AUTOMATIC);
    setUp.takeMask(static_cast<int>(kMinMaskPixels));
    maskTakenPixels(setUp.engine());
    setUp.checkUnit();

    PcaFiles files(setUp.engine(), runPca(setUp.engine(), session));
    if (!files.isMeaningful()) {
        throw Failure(QStringLiteral("the images have no variance to explain"));
    }
    session.stopIfRequested();
    files.write(staged.path());
    staged.finish(session);
    session.answer(staged.answer(files.text(), files.json()));
}

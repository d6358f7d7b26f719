#include "platform/otdr/otdr.h"

#include <gmock/gmock.h>

#include <cstring>

namespace {

wf_packet_header snapshotHeader()
{
    wf_packet_header header;
    std::memcpy(header.magic, "WFPK", 4);
    header.sampleInterval_ns = 10.0;
    header.firstSample_ns = -100.0;
    header.pulse_ns = 100;
    return header;
}

WfMeasParams fibre(double ior, double helix)
{
    WfMeasParams params;
    params.ior = ior;
    params.helix = helix;
    return params;
}

// c / (2 n) for n = 1.5 is 0.0999308... m for a nanosecond of round trip.
constexpr double kMetresPerNs = 0.299792458 / 3.0;

TEST(SampleDistance, FollowsSpacingGroupIndexAndHelix)
{
    EXPECT_NEAR(OTDR::smpl2meters(1000, 10.0, 1.5, 0.0), 10000.0 * kMetresPerNs, 1e-9);
    EXPECT_NEAR(OTDR::smpl2meters(1000, 10.0, 3.0, 0.0), 5000.0 * kMetresPerNs, 1e-9);
    EXPECT_NEAR(OTDR::smpl2meters(1000, 10.0, 1.5, 25.0), 8000.0 * kMetresPerNs, 1e-9);
    EXPECT_EQ(OTDR::smpl2meters(0, 10.0, 1.5, 0.0), 0.0);
    EXPECT_NEAR(OTDR::smpl2meters(-10, 10.0, 1.5, 0.0), -100.0 * kMetresPerNs, 1e-12);
}

TEST(SampleDistance, OfASnapshotCountsFromTheTimeOfItsFirstSample)
{
    EXPECT_NEAR(OTDR::smpl2meters(10, snapshotHeader(), fibre(1.5, 0.0)), 0.0, 1e-12);
    EXPECT_NEAR(OTDR::smpl2meters(110, snapshotHeader(), fibre(1.5, 0.0)), 1000.0 * kMetresPerNs,
                1e-9);
}

TEST(SampleDistance, OfTimeIsThatOfItsRoundTrip)
{
    EXPECT_NEAR(OTDR::ns2meters(100.0, snapshotHeader(), fibre(1.5, 0.0)), 100.0 * kMetresPerNs,
                1e-9);
}

TEST(SampleDistance, IsZeroForAHeaderThatIsNone)
{
    wf_packet_header header = snapshotHeader();
    header.magic[0] = 'X';
    EXPECT_EQ(OTDR::smpl2meters(1000, header, fibre(1.5, 0.0)), 0.0);
    EXPECT_EQ(OTDR::ns2meters(100.0, header, fibre(1.5, 0.0)), 0.0);
}

} // namespace

#include "worker.h"

#include <opencv2/imgproc.hpp>

#include <cmath>

namespace peers {
namespace {

cv::Mat matrix(const Surface &surface, int type = CV_8UC4) {
    return {surface.height, surface.width, type, surface.pixels};
}

cv::Scalar scalar(Pixel colour) {
    return cv::Scalar(colour & 0xFF, colour >> 8 & 0xFF, colour >> 16 & 0xFF, 255);
}

Run fill(const Stage &stage) {
    return [dst = matrix(stage.dst)]() mutable { dst.setTo(scalar(fillColour)); };
}

Run copy(const Stage &stage) {
    return [dst = matrix(stage.dst), src = matrix(stage.src)]() mutable { src.copyTo(dst); };
}

Run add(const Stage &stage) {
    return [dst = matrix(stage.dst), src = matrix(stage.src)]() mutable { cv::add(dst, src, dst); };
}

Run fade(const Stage &stage) {
    return [dst = matrix(stage.dst)]() mutable { dst.convertTo(dst, -1, fadeFactor / 256.0); };
}

Run blendConstant(const Stage &stage) {
    return [dst = matrix(stage.dst), src = matrix(stage.src)]() mutable {
        cv::addWeighted(src, constantAlpha / 256.0, dst, 1 - constantAlpha / 256.0, 0, dst);
    };
}

Run copyKeyed(const Stage &stage) {
    return [dst = matrix(stage.dst, CV_32SC1), src = matrix(stage.src, CV_32SC1), mask = cv::Mat()]() mutable {
        cv::compare(src, static_cast<double>(static_cast<std::int32_t>(keyColour)), mask, cv::CMP_NE);
        src.copyTo(dst, mask);
    };
}

template <cv::InterpolationFlags filter>
Run scale(const Stage &stage) {
    return [dst = matrix(stage.dst), src = matrix(stage.src)]() mutable {
        cv::resize(src, dst, dst.size(), 0, 0, filter);
    };
}

template <cv::InterpolationFlags filter>
Run rotate(const Stage &stage) {
    // Its angles turn the other way, and are degrees.
    const cv::Point2f centre(static_cast<float>(stage.src.width / 2), static_cast<float>(stage.src.height / 2));
    cv::Mat turn = cv::getRotationMatrix2D(centre, -rotationAngle * 180 / CV_PI, rotationScale);
    turn.at<double>(0, 2) += stage.dst.width / 2 - stage.src.width / 2;
    turn.at<double>(1, 2) += stage.dst.height / 2 - stage.src.height / 2;
    return [dst = matrix(stage.dst), src = matrix(stage.src), turn]() mutable {
        cv::warpAffine(src, dst, turn, dst.size(), filter, cv::BORDER_TRANSPARENT);
    };
}

Run boxBlur(const Stage &stage) {
    const int side = 2 * static_cast<int>(stage.amount) + 1;
    return [dst = matrix(stage.dst), src = matrix(stage.src), side]() mutable { cv::blur(src, dst, {side, side}); };
}

Run gaussianBlur(const Stage &stage) {
    const int side = 2 * static_cast<int>(std::ceil(3 * stage.amount)) + 1;
    return [dst = matrix(stage.dst), src = matrix(stage.src), side, sigma = stage.amount]() mutable {
        cv::GaussianBlur(src, dst, {side, side}, sigma);
    };
}

Run drawLines(const Stage &stage) {
    return [dst = matrix(stage.dst)]() mutable {
        for (const Line &line : lines())
            cv::line(dst, {line.x1, line.y1}, {line.x2, line.y2}, scalar(line.colour), 1, cv::LINE_AA);
    };
}

Run drawCircles(const Stage &stage) {
    return [dst = matrix(stage.dst)]() mutable {
        for (const Circle &circle : circles())
            cv::circle(dst, {circle.x, circle.y}, circle.radius, scalar(circle.colour), cv::FILLED);
    };
}

} // namespace

Peer peer(const std::string &) {
    cv::setNumThreads(1);
    return {"OpenCV " + cv::getVersionString(),
            {{"fill", "Mat::setTo", fill},
             {"copy", "Mat::copyTo", copy},
             {"add", "add", add},
             {"fade", "Mat::convertTo", fade},
             {"constant alpha", "addWeighted", blendConstant},
             {"colour key", "compare, Mat::copyTo", copyKeyed},
             {"nearest", "resize, INTER_NEAREST", scale<cv::INTER_NEAREST>},
             {"bilinear", "resize, INTER_LINEAR", scale<cv::INTER_LINEAR>},
             {"rotation, nearest", "warpAffine, INTER_NEAREST", rotate<cv::INTER_NEAREST>},
             {"rotation, bilinear", "warpAffine, INTER_LINEAR", rotate<cv::INTER_LINEAR>},
             {"box blur", "blur", boxBlur},
             {"Gaussian blur", "GaussianBlur", gaussianBlur},
             {"lines", "line, LINE_AA", drawLines},
             {"circles", "circle, FILLED", drawCircles}}};
}

} // namespace peers

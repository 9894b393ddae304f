use strict;
use warnings;
use Socket qw(:DEFAULT IPPROTO_TCP TCP_NODELAY);

my $CHUNK = 8192;
my $ACK = "ACK__________";
my $ELEMENTS = 100000;
my $LARGE = 100000000;
my $ROUNDS = 2000;

sub buffers {
    my ($socket) = @_;
    setsockopt($socket, SOL_SOCKET, $_, pack("l", $CHUNK)) or die for SO_SNDBUF, SO_RCVBUF;
}

sub nodelay {
    my ($socket) = @_;
    setsockopt($socket, IPPROTO_TCP, TCP_NODELAY, pack("l", 1)) or die;
    return $socket;
}

# Sends go out at once; reads are buffered.
sub receive {
    my ($socket, $count) = @_;
    read($socket, my $data, $count) == $count or die "stream ended";
    return $data;
}

sub send_count {
    my ($socket, $count) = @_;
    syswrite($socket, chr(length $count)) or die;
    syswrite($socket, $count) or die;
}

sub receive_count {
    my ($socket) = @_;
    return receive($socket, ord(receive($socket, 1)));
}

sub send_string {
    my $socket = $_[0];
    my $size = length $_[1];
    send_count($socket, $size);
    for (my $at = 0; $at < $size; $at += $CHUNK) {
        my $count = $size - $at < $CHUNK ? $size - $at : $CHUNK;
        (syswrite($socket, $_[1], $count, $at) // 0) == $count or die;
        receive($socket, length $ACK) eq $ACK or die "no acknowledgement";
    }
}

sub receive_string {
    my ($socket) = @_;
    my $left = receive_count($socket);
    my $data = "";
    while ($left > 0) {
        my $count = $left < $CHUNK ? $left : $CHUNK;
        $data .= receive($socket, $count);
        syswrite($socket, $ACK) or die;
        $left -= $count;
    }
    return $data;
}

sub connect_to {
    my ($port) = @_;
    socket(my $socket, PF_INET, SOCK_STREAM, 0) or die;
    buffers($socket);
    connect($socket, pack_sockaddr_in($port, INADDR_LOOPBACK)) or die "connect: $!";
    return nodelay($socket);
}

sub accept_from {
    my ($listener) = @_;
    accept(my $socket, $listener) or die;
    return nodelay($socket);
}

my %listens = (
    sendlist => sub {
        my $socket = accept_from($_[0]);
        receive_string($socket) eq '@list' or die "no list";
        my $count = receive_count($socket);
        my @elements = map { receive_string($socket) } 1 .. $count;
        close $socket;
        print scalar(@elements), " $elements[77777]\n";
    },
    sendstring => sub {
        my $socket = accept_from($_[0]);
        my $data = receive_string($socket);
        close $socket;
        print length($data), " ", substr($data, 77777777, 10), "\n";
    },
    rounds => sub {
        my $size = 0;
        for (1 .. $ROUNDS) {
            my $socket = accept_from($_[0]);
            my $request = receive_string($socket);
            send_string($socket, "answer to $request");
            close $socket;
            $size += length $request;
        }
        print "$size\n";
    },
);
my %calls = (
    sendlist => sub {
        my @elements = map { "element $_" } 0 .. $ELEMENTS - 1;
        my $socket = connect_to($_[0]);
        send_string($socket, '@list');
        send_count($socket, scalar @elements);
        send_string($socket, $_) for @elements;
        close $socket;
    },
    sendstring => sub {
        my $socket = connect_to($_[0]);
        send_string($socket, "0123456789" x ($LARGE / 10));
        close $socket;
    },
    rounds => sub {
        for my $number (0 .. $ROUNDS - 1) {
            my $socket = connect_to($_[0]);
            send_string($socket, "request $number");
            receive_string($socket) eq "answer to request $number" or die "wrong answer";
            close $socket;
        }
    },
);

my ($role, $workload, $port) = @ARGV;
if ($role eq "listen") {
    socket(my $listener, PF_INET, SOCK_STREAM, 0) or die;
    setsockopt($listener, SOL_SOCKET, SO_REUSEADDR, pack("l", 1)) or die;
    buffers($listener);
    bind($listener, pack_sockaddr_in($port, INADDR_ANY)) or die;
    listen($listener, 5) or die;
    $listens{$workload}->($listener);
} else {
    $calls{$workload}->($port);
}

use strict;
use warnings;
use IO::Handle;

sub parse {
    my ($in) = @_;
    my $root = {name => undef, children => [], byname => {}, values => []};
    my ($node, @above);
    while (<$in>) {
        s/^\s+|\s+$//g;
        next if $_ eq "" || /^#/;
        if ($_ eq "{") {
            next;
        } elsif ($_ eq "}") {
            last unless @above;
            $node = pop @above;
        } elsif (/^type=(.*)/) {
            $node->{type} = $1;
        } elsif (/^value=(.*)/) {
            push @{$node->{values}}, $1;
        } else {
            my $child = {name => $_, children => [], byname => {}, values => []};
            if ($node) {
                push @{$node->{children}}, $child;
                $node->{byname}{$_} //= $child;
                push @above, $node;
            } else {
                $root = $child;
            }
            $node = $child;
        }
    }
    return $root;
}

sub find {
    my ($node, $path) = @_;
    my ($first, @names) = split /\./, $path;
    $node = $node->{byname}{$_} or die for @names;
    return $node;
}

sub put {
    my ($out, $node, $tabs) = @_;
    print $out "$tabs$node->{name}\n$tabs\{\n";
    if (defined $node->{type}) {
        print $out "$tabs\ttype=$node->{type}\n";
        print $out "$tabs\tvalue=$_\n" for @{$node->{values}};
    }
    put($out, $_, "$tabs\t") for @{$node->{children}};
    print $out "$tabs}\n";
}

open my $in, "<", "config.conf" or die;
my $root = parse($in);
for my $i (0 .. 999) {
    find($root, "root.group$i.node" . $i % 100)->{values} = [$i * 7];
}
open my $out, ">", "config-perl.conf.tmp" or die;
put($out, $root, "");
$out->flush or die;
$out->sync or die;
close $out or die;
rename "config-perl.conf.tmp", "config-perl.conf" or die;
print -s "config-perl.conf", "\n";
